// Where a value crosses a level.
#pragma once

#include <optional>

#include "app/values/results_now.h"

struct kv_crossing_t {
  kv_variable_t variable = 0;
  bool rises = true;
  double level = 0;
};
// The x of the next crossing after that of the results, or of the last one before it.
std::optional<double> kv_next_crossing(const kv_results_t& results, const kv_crossing_t& crossing);
std::optional<double> kv_previous_crossing(const kv_results_t& results,
                                           const kv_crossing_t& crossing);

// The middle between the least and the greatest value over the plot, which is read once.
double kv_middle_of(const kv_results_t& results, kv_variable_t variable);
