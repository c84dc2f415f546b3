#include "app/values/crossing.h"

#include "results/overview.h"

namespace {

// Calls `take` with each crossing between rows of the plot, from a row on, until it says false.
template <typename Take>
void each_crossing(const kv_results_t& results, const kv_crossing_t& crossing,
                   std::uint64_t first_row, Take take) {
  const rs_plot_t& plot = results.plot();
  if (first_row >= plot.nb_rows) return;
  const std::uint32_t both[] = {0, crossing.variable};
  const bool is_complex = plot.header.is_complex;
  const double sign = crossing.rises ? 1 : -1;
  rs_row_reader_t reader(results.file, plot, first_row, both);
  rs_value_t before[2], here[2];
  reader.next(before);
  for (std::uint64_t row = first_row + 1; row < plot.nb_rows; ++row) {
    reader.next(here);
    const double from = sign * (rs_shown(before[1], is_complex) - crossing.level);
    const double to = sign * (rs_shown(here[1], is_complex) - crossing.level);
    if (from < 0 && to >= 0) {
      const double part = from / (from - to);
      if (!take(before[0].re + part * (here[0].re - before[0].re))) return;
    }
    before[0] = here[0];
    before[1] = here[1];
  }
}

}  // namespace

std::optional<double> kv_next_crossing(const kv_results_t& results, const kv_crossing_t& crossing) {
  std::optional<double> found;
  each_crossing(results, crossing, results.place.row, [&](double x) {
    if (x > results.x) found = x;
    return !found;
  });
  return found;
}

std::optional<double> kv_previous_crossing(const kv_results_t& results,
                                           const kv_crossing_t& crossing) {
  std::optional<double> found;
  each_crossing(results, crossing, 0, [&](double x) {
    if (x >= results.x) return false;
    found = x;
    return true;
  });
  return found;
}

double kv_middle_of(const kv_results_t& results, kv_variable_t variable) {
  rs_overview_t overview;
  overview.make(results.file, results.plot(), {&variable, 1});
  const rs_range_t range = overview.whole(0);
  return range.is_empty() ? 0 : (range.low + range.high) / 2;
}
