// What SHOw WAVes shows, for values_state.h.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "results/overview.h"

struct kv_waves_t {
  std::vector<std::string> paths;  // of all that were asked for
  std::vector<std::string> names;  // of those that have a value, in the order of the overview
  rs_overview_t overview;
  std::uint64_t of_results = 0;  // number of those that the overview was made of; 0: none
  double from = 0, to = 0;       // the part of the scale that is shown
  bool is_dragged = false;       // button 1 went down over the waves, there:
  double dragged_from = 0;
};
