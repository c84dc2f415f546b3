#include "app/values/results_now.h"

#include <algorithm>

#include "app/state.h"
#include "expand/store.h"

namespace {

// The plot that a number means, or the one that most want to see; nothing for a wrong number.
std::optional<std::size_t> chosen_plot(const rs_file_t& file, std::size_t number) {
  const auto& plots = file.plots();
  if (number > plots.size()) return std::nullopt;
  if (number > 0) return number - 1;
  const auto is_shown = [](const rs_plot_t& plot) {
    return rs_is_time(plot.header) && plot.step <= 1 && plot.nb_rows > 0;
  };
  const auto last = std::find_if(plots.rbegin(), plots.rend(), is_shown);
  return last == plots.rend() ? 0 : static_cast<std::size_t>(plots.rend() - last) - 1;
}

// As far as the scale goes.
void keep_x(kv_results_t& results, double x) {
  if (results.plot().nb_rows == 0) return;
  kv_set_x(results, std::clamp(x, results.least_x(), results.greatest_x()));
}

std::string match(kv_results_t& results) {
  const auto expanded = kv_expanded();
  if (expanded) {
    results.aside = nullptr;
  } else if (results.aside == nullptr) {
    std::string fault;
    results.aside = kv_expand_aside(fault);
    if (results.aside == nullptr) return fault;
  }
  const kv_expanded_t design = kv_design_of(results);
  if (results.matched_run == design.origins.run) return "";
  results.matches = kv_match(design, results.variables);
  results.matched_run = design.origins.run;
  return "";
}

}  // namespace

double kv_results_t::least_x() const {
  return plot().nb_rows == 0
             ? 0
             : std::min(file.scale(plot(), 0), file.scale(plot(), plot().nb_rows - 1));
}
double kv_results_t::greatest_x() const {
  return plot().nb_rows == 0
             ? 0
             : std::max(file.scale(plot(), 0), file.scale(plot(), plot().nb_rows - 1));
}

std::string kv_open_plot(kv_results_t& results, const std::string& path, std::size_t number) {
  std::string fault = results.file.open(path);
  if (!fault.empty()) return fault;
  const auto plot = chosen_plot(results.file, number);
  if (!plot) return path + ": has plots 1 to " + std::to_string(results.file.plots().size());
  results.plot_index = *plot;
  results.variables = results.file.variables(results.plot());
  return "";
}

std::string kv_open_results(const std::string& path, std::size_t plot) {
  static std::uint64_t opened = 0;
  auto results = std::make_shared<kv_results_t>();
  results->number = ++opened;
  if (std::string fault = kv_open_plot(*results, path, plot); !fault.empty()) return fault;
  const auto before = kv_pext.results;
  const bool is_again = before && before->file.path() == path;
  keep_x(*results, is_again ? before->x : results->file.scale(results->plot(), 0));
  kv_pext.results = std::move(results);
  kv_pext.results_path = path;
  kv_pext.results_plot = plot;
  return "";
}

void kv_close_results() { kv_pext.results = nullptr; }

kv_results_t* kv_results_now(std::string& fault) {
  fault.clear();
  if (!kv_pext.results) return nullptr;
  if (kv_pext.results->file.has_changed()) {
    fault = kv_open_results(kv_pext.results_path, kv_pext.results_plot);
    if (!fault.empty()) return nullptr;
  }
  fault = match(*kv_pext.results);
  return fault.empty() ? kv_pext.results.get() : nullptr;
}

kv_expanded_t kv_design_of(const kv_results_t& results) {
  return results.aside == nullptr ? *kv_expanded() : results.aside->expanded();
}

bool kv_set_x(kv_results_t& results, double x) {
  const auto place = kv_place_at(results, x);
  if (!place) return false;
  results.x = x;
  results.place = *place;
  return true;
}

std::optional<rs_place_t> kv_place_at(const kv_results_t& results, double x) {
  rs_place_t place;
  if (!rs_find(results.file, results.plot(), x, place)) return std::nullopt;
  return place;
}

rs_value_t kv_value_at(const kv_results_t& results, rs_place_t place, kv_variable_t variable) {
  rs_value_t value;
  if (variable == kv_ground || results.plot().nb_rows == 0) return value;
  rs_values_at(results.file, results.plot(), place, {&variable, 1}, {&value, 1});
  return value;
}
