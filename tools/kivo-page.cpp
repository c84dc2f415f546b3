// kivo-page: a design as one file for the browser, to be walked through without KIVO.
#include <cerrno>
#include <string>
#include <vector>

#include "app/check/findings/waivers.h"
#include "app/values/asked.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/numbers.h"
#include "pages/page_data.h"
#include "pages/web_page.h"
#include "results/engineering.h"
#include "tools/design_tool.h"

namespace {
constexpr tool_t tool = {
    "kivo-page",
    "usage: kivo-page [OPTION]... DESIGN -o FILE.html\n"
    "Writes a design as one page for the browser: its sheets, nets, findings and values. The page\n"
    "needs no server and loads nothing. Whoever has it has the drawings.\n"
    "  DESIGN   design directory\n"
    "  -o FILE  the file to write\n"
    "  --values FILE   results of a simulation, with --at\n"
    "  --at X   where on their scale, as \"58n\"; may be given again (default: the end)\n"
    "  --plot N   which plot of the results (default: the last transient, else the first)\n"
    "  --no-findings   leaves out the findings of the last check and its waivers\n"
    "  --primitive NAME[=VALUE]  a property of instances that are shown as they are, like\n"
    "      PRIMitive; may be given again (default: CLASS)\n"
    "  --help, --version\n"
    "Exit status: 0 written, 1 not all could be written, 2 wrong options.\n"};

struct wishes_t {
  std::string design, out;
  std::vector<std::string_view> primitives, at;
  std::string_view values;
  std::size_t plot = 0;
  bool no_findings = false;
};

// The findings of the last check; false when they are there and cannot be read.
bool read_findings(const std::string& design, std::string& text) {
  constexpr std::size_t most_bytes = std::size_t{64} << 20;
  const std::string path = design + "/findings.json";
  if (!x_read_regular(path, text, most_bytes + 1)) {
    text.clear();
    if (x_is_missing(errno)) return true;
    tool_complain(tool, path + ": " + x_why_unread(errno));
    return false;
  }
  const bool is_whole = text.starts_with("[") && text.ends_with("]\n");
  if (!is_whole || text.size() > most_bytes)
    tool_complain(tool, path + (is_whole ? ": larger than 64 MB" : ": no findings of a check"));
  else
    return true;
  text.clear();
  return false;
}

// The places of the scale that --at names; false after a complaint.
bool find_places(const kv_results_t& results, const wishes_t& wishes,
                 std::vector<rs_place_t>& places, kv_page_values_t& values) {
  const auto& plot = results.plot();
  const std::string unit(results.scale_unit());
  const auto add = [&](double x, rs_place_t place) {
    places.push_back(place);
    values.places.push_back(plot.has_scale
                                ? plot.header.first_variable.name + " " + rs_engineering(x, 6, unit)
                                : plot.header.plot_name);
  };
  if (plot.nb_rows == 0) {
    tool_complain(tool, results.file.path() + ": no values");
    return false;
  }
  if (wishes.at.empty())
    add(results.file.scale(plot, plot.nb_rows - 1), {.row = plot.nb_rows - 1, .fraction = 0});
  for (const std::string_view word : wishes.at) {
    const auto x = rs_read_number(word);
    const auto place = x && plot.has_scale ? kv_place_at(results, *x) : std::nullopt;
    if (!place) {
      tool_complain(tool,
                    "--at " + std::string(word) + ": not on the scale of " + results.file.path() +
                        (plot.has_scale ? ": " + kv_range_text(results) : ", which has none"));
      return false;
    }
    add(*x, *place);
  }
  return true;
}

// The values of the results at the places; the design is expanded for their names.
bool read_values(const wishes_t& wishes, kv_page_values_t& values) {
  constexpr int digits = 4;
  kv_results_t results;
  std::vector<rs_place_t> places;
  const std::string path(wishes.values);
  std::string why = kv_open_plot(results, path, wishes.plot);
  kv_design_pages_t pages;
  if (why.empty() && !find_places(results, wishes, places, values)) return false;
  if (!why.empty() || !kv_open_pages(pages, wishes.design, wishes.primitives, why) ||
      !kv_expand_pages(pages, why)) {
    tool_complain(tool, why);
    return false;
  }
  values.file = path;
  const kv_memory_netlist_t netlist(pages.design);
  const kv_memory_paths_t paths(netlist);
  const auto matches = kv_match({netlist, pages.origins, paths}, results.variables);
  const auto texts = [&](kv_variable_t variable, std::string_view unit) {
    std::vector<std::string> all;
    for (const auto place : places)
      all.push_back(kv_value_text(results, kv_value_at(results, place, variable), unit, digits));
    return all;
  };
  for (const auto& [net, variable] : matches.nets)
    values.nets.emplace_back(netlist.path({kv_named::net, net}), texts(variable, "V"));
  for (const auto& value : matches.devices)
    values.devices.push_back({std::string(netlist.path({kv_named::inst, value.inst})),
                              value.parameter, texts(value.variable, kv_unit_of(results, value))});
  const bool is_of_it = matches.of_nets + matches.of_devices > 0;
  if (!is_of_it) tool_complain(tool, path + ": no variable is of this design");
  return is_of_it;
}

bool run(const wishes_t& wishes) {
  kv_design_pages_t pages;
  std::string why;
  if (!kv_open_pages(pages, wishes.design, wishes.primitives, why)) {
    tool_complain(tool, why);
    return false;
  }
  kv_pages_by_sheet(pages);
  bool is_whole = pages.left_out.empty();
  for (const std::string& left_out : pages.left_out) tool_complain(tool, left_out + " (left out)");

  kv_page_extras_t extras;
  kv_waivers_t waivers;
  if (!wishes.no_findings) {
    is_whole &= read_findings(wishes.design, extras.findings);
    if (!extras.findings.empty()) waivers = kv_read_waivers(wishes.design);
    for (const std::string& fault : waivers.faults)
      tool_complain(tool, wishes.design + "/" + fault + " (left out)");
    for (const auto& waiver : waivers.waivers)
      extras.waivers.push_back(
          {kv_row_of(waiver.rule).name, waiver.path, waiver.reason, waiver.date});
  }
  if (!wishes.values.empty() && !read_values(wishes, extras.values)) return false;
  pages.name = last_name(pages.name);
  const std::string data = kv_page_data(pages, extras, why);
  if (data.empty()) {
    tool_complain(tool, why);
    return false;
  }
  return write_file(tool, wishes.out, kv_web_page(pages.name, data, deflated)) && is_whole;
}
}  // namespace

int main(int argc, char** argv) {
  wishes_t wishes;
  std::vector<std::string_view> words;
  std::string_view out, plot;
  const tool_option_t options[] = {{.name = "-o", .value = &out},
                                   {.name = "--values", .value = &wishes.values},
                                   {.name = "--at", .values = &wishes.at},
                                   {.name = "--plot", .value = &plot},
                                   {.name = "--no-findings", .flag = &wishes.no_findings},
                                   {.name = "--primitive", .values = &wishes.primitives}};
  if (const auto ended = tool_read(tool, argc, argv, options, words)) return *ended;
  if (words.size() != 1 || out.empty())
    return tool_usage_error(tool, "DESIGN and -o FILE are wanted");
  if (wishes.values.empty() && (!wishes.at.empty() || !plot.empty()))
    return tool_usage_error(tool, "--at and --plot go with --values");
  if (!plot.empty()) {
    const auto number = gx_whole_number<int>(plot);
    if (!number || *number < 1)
      return tool_usage_error(tool, "--plot: a number from 1, not " + std::string(plot));
    wishes.plot = static_cast<std::size_t>(*number);
  }
  if (const auto ended = read_primitives(tool, wishes.primitives)) return *ended;
  wishes.design = words[0];
  // As the findings of a check name it.
  while (wishes.design.size() > 1 && wishes.design.ends_with('/')) wishes.design.pop_back();
  while (wishes.design.size() > 2 && wishes.design.starts_with("./")) wishes.design.erase(0, 2);
  wishes.out = out;
  if (!can_be_sheet(tool, wishes.design)) return 1;
  gx_session.init_done = true;  // files may be opened; no display is made
  return run(wishes) ? 0 : 1;
}
