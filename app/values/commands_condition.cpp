// LIST DEVices CONDition: the devices whose values meet it, as findings to go to. VALues NEXt,
// VALues PREvious: to where a net crosses a level.
#include <cmath>
#include <string>

#include "app/check/findings/listed_places.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/values/asked.h"
#include "app/values/condition.h"
#include "app/values/shown_values.h"
#include "app/values/value_records.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "results/engineering.h"

namespace {

constexpr int told_digits = 6;

// --- LIST DEVices

std::string words_from(const kv_command_t& command, int first) {
  std::string words;
  for (int n = first; n <= command.count(); ++n) {
    if (n > first) words += ' ';
    words += kv_file_name(command.word(n));
  }
  return words;
}

// The values of a device by the parameters of a condition: the first of each name.
struct asked_values_t {
  std::vector<double> numbers;
  std::vector<std::string_view> units;
  std::string words;  // "vds 1.2 V, vdsat 100 mV"
};
std::optional<asked_values_t> asked_values(const kv_results_t& results,
                                           const kv_condition_t& condition, std::int32_t inst) {
  asked_values_t asked;
  for (const auto& parameter : condition.parameters()) {
    const kv_device_value_t* found = nullptr;
    for (const auto& each : results.matches.of_device(inst)) {
      if (found == nullptr && rs_parameter_name(each.parameter) == parameter) found = &each;
    }
    if (found == nullptr) return std::nullopt;
    const rs_value_t value = kv_value_at(results, results.place, found->variable);
    const std::string_view unit = kv_unit_of(results, *found);
    asked.numbers.push_back(value.re);
    asked.units.push_back(unit);
    asked.words.append(asked.words.empty() ? "" : ", ").append(parameter).append(" ");
    asked.words += kv_value_text(results, value, unit, told_digits);
  }
  return asked;
}

void kv_list_devices_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# LIST DEVices ";
  constexpr std::size_t most = 1000;
  const kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  kv_condition_t condition;
  std::string fault;
  if (!condition.read(words_from(command, 3), fault)) {
    return kv_refuse(refused, command, "# !! Error : Condition : " + fault, 3);
  }
  const auto design = kv_design_of(*results);
  const gx_list_batch_t batch;
  kv_begin_list(kv_listed::devices);
  std::size_t met = 0, asked_of = 0;
  std::int32_t before = 0;
  for (const auto& each : results->matches.devices) {
    if (each.inst == std::exchange(before, each.inst)) continue;
    const auto asked = asked_values(*results, condition, each.inst);
    if (!asked) continue;
    ++asked_of;
    if (!condition.holds(asked->numbers) || ++met > most) continue;
    const kv_object_t object{kv_named::inst, each.inst};
    const kv_place_t place = kv_place_of(design.netlist, design.origins, object);
    kv_pext.listed_places.push_back(
        {std::string(design.netlist.path(object)),
         std::string(kv_visit_path(design.netlist, design.origins, place.visit)), place.object_id,
         asked->words});
    const std::string& path = kv_pext.listed_places.back().path;
    kv_record("device", {{"number", met}, {"path", path}});
    for (std::size_t i = 0; i < asked->numbers.size(); ++i) {
      const rs_value_t value{asked->numbers[i], 0};
      kv_record_value(*results, results->x,
                      {path, condition.parameters()[i], asked->units[i], &value});
    }
    gx_tell("# ", std::to_string(met), " ", path, " : ", asked->words);
  }
  if (met > most) gx_tell("# ... and more ");
  kv_record("counts", {{"devices", met}, {"of", asked_of}});
  gx_tell("# ", std::to_string(met), " of ", std::to_string(asked_of),
          " devices that have these values", kv_at_text(*results, results->x));
  kv_echo(" LIST DEVices ", command, 3);
}

// --- VALues NEXt, VALues PREvious

// The net that crosses a level; nothing after the refusal.
std::optional<kv_crossing_t> wanted_crossing(std::string_view refused, const kv_command_t& command,
                                             const kv_results_t& results) {
  kv_crossing_t crossing;
  const auto refuse = [&](std::string_view error) {
    kv_refuse(refused, command, error, 3);
    return std::nullopt;
  };
  if (!results.plot().has_scale) return refuse("# !! Error : This plot has no scale ? ");
  crossing.rises = gx_equal("RIS", command.word(4));
  if (!crossing.rises && !gx_equal("FAL", command.word(4))) {
    return refuse("# !! Error : RISe or FALl ? ");
  }
  const auto nets = kv_wanted_value_nets(refused, command, results, command.word(3));
  if (nets.empty()) return std::nullopt;
  const kv_variable_t* const variable = results.matches.of_net(nets.front());
  if (nets.size() > 1) return refuse("# !! Error : More Than 1 Net ? ");
  if (variable == nullptr || *variable == kv_ground) {
    return refuse("# !! Error : The file has no value of the net ? ");
  }
  crossing.variable = *variable;
  if (command.count() == 4) {
    crossing.level = kv_middle_of(results, *variable);
    return crossing;
  }
  const auto level = rs_read_number(command.word(6));
  if (!gx_equal("LEV", command.word(5)) || !level) return refuse("# !! Error : Number invalid ? ");
  crossing.level = *level;
  return crossing;
}

void go_to_crossing(std::string_view keyword, const kv_command_t& command,
                    std::optional<double> (*find)(const kv_results_t&, const kv_crossing_t&)) {
  const std::string refused = "#" + std::string(keyword);
  kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  const auto crossing = wanted_crossing(refused, command, *results);
  if (!crossing) return;
  const auto x = find(*results, *crossing);
  if (!x || !kv_set_x(*results, *x)) {
    return kv_refuse(
        refused, command,
        "# !! Warning : No more crossing of " + rs_engineering(crossing->level, told_digits), 3);
  }
  kv_redraw_values();
  const rs_value_t value = kv_value_at(*results, results->place, crossing->variable);
  kv_record("crossing", {{"path", command.word(3)}, {"level", crossing->level}, {"at", *x}});
  gx_tell("# ", command.word(3), " : ", kv_value_text(*results, value, "V", told_digits),
          kv_at_text(*results, results->x));
  kv_echo(keyword, command, 3);
}

void kv_values_next_cmd(const kv_command_t& command) {
  go_to_crossing(" VALues NEXt ", command, kv_next_crossing);
}
void kv_values_previous_cmd(const kv_command_t& command) {
  go_to_crossing(" VALues PREvious ", command, kv_previous_crossing);
}

constexpr kv_command_row_t condition_rows[] = {
    // clang-format off
    {{"LIST", "DEV"}, "LIST DEVices condition ...", kv_list_devices_cmd, "# LIST DEVices ", 3},
    {{"VAL", "NEX"}, "VALues NEXt path RISe or FALl [LEVel v]", kv_values_next_cmd, "# VALues NEXt ", 3},
    {{"VAL", "PRE"}, "VALues PREvious path RISe or FALl [LEVel v]", kv_values_previous_cmd, "# VALues PREvious ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_condition_commands() { return condition_rows; }
