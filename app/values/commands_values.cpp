// VALues FILe, OFF, AT, NET, DEVice, EXPect, CHEck: what a simulator found, in the names of the
// design.
#include <string>

#include "app/find/find_path.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "app/values/answers.h"
#include "app/values/asked.h"
#include "app/values/shown_values.h"
#include "app/values/value_records.h"
#include "app/values/waves.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "results/engineering.h"

namespace {

constexpr int listed_digits = 6;

std::string count_of(std::size_t count, std::string_view what) {
  return std::to_string(count) + std::string(what);
}

// --- VALues FILe

void tell_results(const kv_results_t& results) {
  const rs_plot_t& plot = results.plot();
  std::string step;
  if (plot.step > 0) {
    step = " step " + std::to_string(plot.step) + " of " + std::to_string(plot.nb_steps) + ",";
  }
  gx_tell("# ", rs_simulator_name(plot.header.simulator), " : ", plot.header.plot_name, ",", step,
          " plot ", std::to_string(results.plot_index + 1), " of ",
          std::to_string(results.file.plots().size()));
  const std::string points = count_of(plot.nb_rows, plot.nb_rows == 1 ? " point" : " points");
  if (plot.has_scale && plot.nb_rows > 0) {
    gx_tell("# ", points, ", ", plot.header.first_variable.name, " from ", kv_range_text(results));
  } else {
    gx_tell("# ", points);
  }
  gx_tell("# names : ", count_of(results.matches.of_nets, " of nets, "),
          count_of(results.matches.of_devices, " of devices, "),
          count_of(results.matches.idle.size(), " of nothing"));
  const bool has_range = plot.has_scale && plot.nb_rows > 0;
  kv_record("results", {{"simulator", rs_simulator_name(plot.header.simulator)},
                        {"plot", plot.header.plot_name},
                        {"points", plot.nb_rows},
                        {"scale", plot.has_scale ? plot.header.first_variable.name : ""},
                        {"from", kv_recorded_x(results, has_range ? results.least_x() : 0)},
                        {"to", kv_recorded_x(results, has_range ? results.greatest_x() : 0)},
                        {"of_nets", results.matches.of_nets},
                        {"of_devices", results.matches.of_devices},
                        {"of_nothing", results.matches.idle.size()}});
  for (const auto& fault : results.file.faults()) {
    gx_report(gx_line_kind::warning, "# !! Warning : ", fault);
  }
}

void kv_values_file_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues FILe ";
  std::string path = kv_pext.results_path.empty() ? kv_results_of_link() : kv_pext.results_path;
  std::size_t plot = kv_pext.results_plot;
  if (command.count() >= 3) {
    path = gx_view(gx_resolve_path(kv_file_name(command.word(3))));
    plot = 0;
  }
  if (path.empty()) return kv_refuse(refused, command, "# !! Error : No file named ? ", 3);
  if (command.count() >= 4) {
    const auto number = gx_whole_number<std::uint32_t>(command.word(5));
    if (!gx_equal("PLO", command.word(4)) || !number || *number == 0) {
      return kv_refuse(refused, command, "# !! Error : Plot number invalid ? ", 3);
    }
    plot = *number;
  }
  if (const std::string fault = kv_open_results(path, plot); !fault.empty()) {
    return kv_refuse(refused, command, "# !! Error : " + fault, 3);
  }
  const kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  tell_results(*results);
  kv_redraw_values();
  kv_echo(" VALues FILe ", command, 3);
}

void kv_values_off_cmd(const kv_command_t&) {
  if (kv_waves_are_shown()) kv_hide_waves();
  kv_close_results();
  if (kv_pext.values_shown.any()) {
    kv_show_values({});
    kv_redraw_views();
  }
  gx_tell(" VALues OFF ");
}

// --- VALues AT

void kv_values_at_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues AT ";
  kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  if (command.count() == 3) {
    const auto x = kv_read_x(refused, command, *results, command.word(3));
    if (!x) return;
    kv_set_x(*results, *x);
    kv_redraw_values();
  } else if (!results->plot().has_scale) {
    return kv_refuse(refused, command, "# !! Error : This plot has no scale ? ", 3);
  }
  kv_record("place", {{"at", results->x}});
  gx_tell(" VALues AT ", rs_engineering(results->x, listed_digits, results->scale_unit()), " ");
}

// --- VALues NET, VALues DEVice

void kv_values_net_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues NET ";
  const kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  const auto asked = kv_read_asked(refused, command, *results, 3);
  if (!asked) return;
  const auto nets = kv_wanted_value_nets(refused, command, *results, asked->path);
  if (nets.empty()) return;
  const auto design = kv_design_of(*results);
  const gx_list_batch_t batch;
  for (const std::int32_t net : nets) {
    const auto path = design.netlist.path({kv_named::net, net});
    const kv_variable_t* const variable = results->matches.of_net(net);
    if (variable == nullptr) {
      gx_tell("# ", path, " : no value");
      kv_record_value(*results, asked->x, {path, "", "V"});
      continue;
    }
    const rs_value_t value = kv_value_at(*results, asked->place, *variable);
    kv_record_value(*results, asked->x, {path, "", "V", &value});
    gx_tell("# ", path, " : ", kv_value_text(*results, value, "V", listed_digits),
            kv_at_text(*results, asked->x));
  }
  kv_echo(" VALues NET ", command, 3);
}

void kv_values_device_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues DEVice ";
  const kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  const auto asked = kv_read_asked(refused, command, *results, 3);
  if (!asked) return;
  const auto devices = kv_wanted_devices(refused, command, *results, asked->path);
  if (devices.empty()) return;
  const auto design = kv_design_of(*results);
  const gx_list_batch_t batch;
  for (const std::int32_t inst : devices) {
    const auto path = design.netlist.path({kv_named::inst, inst});
    const auto values = results->matches.of_device(inst);
    if (values.empty()) gx_tell("# ", path, " : no value");
    for (const auto& each : values) {
      const rs_value_t value = kv_value_at(*results, asked->place, each.variable);
      const std::string_view unit = kv_unit_of(*results, each);
      kv_record_value(*results, asked->x, {path, each.parameter, unit, &value});
      gx_tell("# ", path, " : ", each.parameter, " ",
              kv_value_text(*results, value, unit, listed_digits), kv_at_text(*results, asked->x));
    }
  }
  kv_echo(" VALues DEVice ", command, 3);
}

// --- VALues EXPect

// A value that a path names: of a net, or "PATH[parameter]" of a device.
struct named_value_t {
  std::string path;
  std::string_view unit = "V";
  kv_variable_t variable = 0;
};

// The variable of a path; nothing after the refusal.
std::optional<named_value_t> named_value(std::string_view refused, const kv_command_t& command,
                                         const kv_results_t& results, std::string_view path) {
  const auto design = kv_design_of(results);
  const auto bracket = path.rfind('[');
  kv_drawings_t drawings;
  const auto nets = kv_search_nets(design, drawings, path, 1);
  if (nets.empty() && bracket != path.npos && path.ends_with(']')) {
    const auto devices = kv_wanted_devices(refused, command, results, path.substr(0, bracket));
    if (devices.empty()) return std::nullopt;
    const std::string parameter =
        rs_parameter_name(path.substr(bracket + 1, path.size() - bracket - 2));
    for (const auto& value : results.matches.of_device(devices.front())) {
      if (rs_parameter_name(value.parameter) == parameter) {
        return named_value_t{std::string(path), kv_unit_of(results, value), value.variable};
      }
    }
    kv_refuse(refused, command, "# !! Error : The file has no such value of the device ? ", 3);
    return std::nullopt;
  }
  const auto wanted = kv_wanted_value_nets(refused, command, results, path);
  if (wanted.empty()) return std::nullopt;
  const kv_variable_t* const variable = results.matches.of_net(wanted.front());
  if (wanted.size() > 1) {
    kv_refuse(refused, command, "# !! Error : More Than 1 Net ? ", 3);
  } else if (variable == nullptr) {
    kv_refuse(refused, command, "# !! Error : The file has no value of the net ? ", 3);
  } else {
    return named_value_t{std::string(design.netlist.path({kv_named::net, wanted.front()})), "V",
                         *variable};
  }
  return std::nullopt;
}

// Whether a value is as expected; false after the refusal.
bool is_as_expected(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues EXPect ";
  const kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return false;
  const auto low = rs_read_number(command.word(4)), high = rs_read_number(command.word(5));
  if (!low || !high) {
    kv_refuse(refused, command, "# !! Error : Number invalid ? ", 3);
    return false;
  }
  const auto named = named_value(refused, command, *results, command.word(3));
  if (!named) return false;
  double x = results->x;
  if (command.count() > 5) {
    if (!gx_iden("AT", command.word(6))) {
      kv_refuse(refused, command, kv_bad_count, 3);
      return false;
    }
    const auto at = kv_read_x(refused, command, *results, command.word(7));
    if (!at) return false;
    x = *at;
  }
  const rs_place_t place = results->plot().has_scale ? *kv_place_at(*results, x) : rs_place_t{};
  const rs_value_t value = kv_value_at(*results, place, named->variable);
  const bool holds = results->plot().nb_rows > 0 && value.re >= *low && value.re <= *high;
  kv_record("expectation", {{"path", named->path},
                            {"value", value.re},
                            {"unit", named->unit},
                            {"low", *low},
                            {"high", *high},
                            {"at", kv_recorded_x(*results, x)},
                            {"holds", holds}});
  if (holds) return true;
  kv_refuse(refused, command,
            "# !! Error : " + named->path + " is " +
                kv_value_text(*results, value, named->unit, listed_digits) +
                kv_at_text(*results, x),
            3);
  return false;
}

void kv_values_expect_cmd(const kv_command_t& command) {
  if (is_as_expected(command)) return kv_echo(" VALues EXPect ", command, 3);
  gx_count_error();
}

// --- VALues CHEck

void kv_values_check_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues CHEck ";
  constexpr std::size_t most_told = 100;
  const kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  const auto design = kv_design_of(*results);
  const gx_list_batch_t batch;
  std::size_t told = 0, nets = 0;
  const auto tell = [&](std::string_view what, std::string_view name) {
    if (told++ < most_told) gx_tell("# ", what, name);
  };
  for (const kv_variable_t variable : results->matches.idle) {
    tell("meets nothing : ", results->variables[variable].name);
  }
  if (told > most_told) gx_tell("# ... and more ");
  told = 0;
  for (std::int32_t net = 1; net <= design.netlist.count(kv_named::net); ++net) {
    if (design.netlist.is_bus(net) || results->matches.of_net(net) != nullptr) continue;
    ++nets;
    tell("no value : ", design.netlist.path({kv_named::net, net}));
  }
  if (told > most_told) gx_tell("# ... and more ");
  kv_record("counts",
            {{"names_of_nothing", results->matches.idle.size()}, {"nets_without_value", nets}});
  gx_tell("# ", count_of(results->matches.idle.size(), " names that meet nothing, "),
          count_of(nets, " nets without a value"));
  gx_tell(" VALues CHEck ");
}

constexpr kv_command_row_t values_rows[] = {
    // clang-format off
    {{"VAL", "FIL"}, "VALues FILe [name [PLOt n]]", kv_values_file_cmd, "# VALues FILe ", 3},
    {{"VAL", "OFF"}, "VALues OFF", kv_values_off_cmd, "# VALues OFF ", 3},
    {{"VAL", "AT"}, "VALues AT [x]", kv_values_at_cmd, "# VALues AT ", 3},
    {{"VAL", "NET"}, "VALues NET [path] [AT x]", kv_values_net_cmd, "# VALues NET ", 3},
    {{"VAL", "DEV"}, "VALues DEVice [path] [AT x]", kv_values_device_cmd, "# VALues DEVice ", 3},
    {{"VAL", "EXP"}, "VALues EXPect path low high [AT x]", kv_values_expect_cmd, "# VALues EXPect ", 3},
    {{"VAL", "CHE"}, "VALues CHEck", kv_values_check_cmd, "# VALues CHEck ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_values_commands() { return values_rows; }
