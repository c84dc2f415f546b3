// The file of results that the session has open, and what it says of the design: of the expansion
// of the last RUN, else of one that is made aside, so that values are there before a RUN, too.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/find/aside.h"
#include "app/values/matching.h"
#include "results/raw_file.h"

struct kv_results_t {
  std::uint64_t number = 0;  // another one for each file that was opened, or opened again
  rs_file_t file;
  std::size_t plot_index = 0;
  std::vector<rs_variable_t> variables;
  double x = 0;  // of the scale, at which values are asked for
  rs_place_t place;

  std::unique_ptr<kv_expansion_aside_t> aside;
  std::uint64_t matched_run = 0;  // of the expansion that the matches are of
  kv_matches_t matches;

  const rs_plot_t& plot() const { return file.plots()[plot_index]; }
  // The scale begins and ends here, the lesser first.
  double least_x() const;
  double greatest_x() const;
  std::string_view scale_unit() const { return rs_unit_of(plot().header.first_variable.type); }
};

// Opens a file and chooses a plot (from 1; 0: the last transient, else the first). "", or what is
// wrong. The place is left as it is.
std::string kv_open_plot(kv_results_t& results, const std::string& path, std::size_t number);
// The same for the session; what is wrong leaves the results before as they are.
std::string kv_open_results(const std::string& path, std::size_t plot);
void kv_close_results();

// The results, read again when the file has changed, and matched with the design as it is now. Null
// when none are open, with `fault` empty, or when they cannot be read again or the design cannot be
// expanded.
kv_results_t* kv_results_now(std::string& fault);
// The design that the results were matched with.
kv_expanded_t kv_design_of(const kv_results_t& results);

// Moves x; false outside of the scale.
bool kv_set_x(kv_results_t& results, double x);
// At another x than that of the results; nothing outside of the scale.
std::optional<rs_place_t> kv_place_at(const kv_results_t& results, double x);

rs_value_t kv_value_at(const kv_results_t& results, rs_place_t place, kv_variable_t variable);
