// The expansion run and the commands that set it up.
#include <iterator>
#include <string>

#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/run/run_progress.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/walk.h"
#include "expand/run/run.h"
#include "expand/store.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

const std::string list_limit = std::to_string(kv_max_list);

// A refused command echoes itself after "#"; `echo` is what it shows when it succeeds.
void refuse(std::string_view echo, const kv_command_t& command, std::string_view error,
            int first = 2) {
  kv_refuse(std::string("#").append(echo), command, error, first);
}

// `what` names the list in the refusal of an entry beyond its room.
template <typename Entry>
bool has_room(const kv_list_t<Entry>& list, std::string_view what, std::string_view echo,
              const kv_command_t& command, int first = 2) {
  if (list.count < kv_max_list) return true;
  refuse(echo, command, "# !! Error :  Too many " + std::string(what) + " ? (<" + list_limit + ")",
         first);
  return false;
}

template <typename Entry>
Entry& add_entry(kv_list_t<Entry>& list) {
  return gx_at(list.entry, list.count++);
}

void keep_properties(const kv_command_t& command, kv_prop_list_t& list, std::string_view what,
                     std::string_view echo) {
  constexpr int first = 3;
  const std::string_view type = command.word(3);
  if (type.empty() ||
      std::string_view("ITRS").find(gx_upper_case(type.front())) == std::string_view::npos) {
    return refuse(echo, command, "# !! Error :  3rd parameter incorrect ? ", first);
  }
  for (int n = 4; n <= command.count(); ++n) {
    if (!has_room(list, what, echo, command, first)) return;
    auto& entry = add_entry(list);
    entry.name = gx_string(command.word(n));
    entry.prop_type = gx_string(type);
  }
  kv_echo(echo, command, first);
}

// The path of the sheet in view begins at the top from now on: "/", then the names of the levels.
void anchor_sim_path() {
  auto& path = kv_pext.cur_sim_path;
  if (gx_view(path).starts_with('/')) return;
  gx_string_record_t anchored = gx_string("/");
  gx_concat_line(path, anchored);
  path = anchored;
}

void kv_parameter_cmd(const kv_command_t& command) {
  constexpr std::string_view echo = " PARAMeter ";
  if (!has_room(kv_sext.parameter, "PARAMeter", echo, command)) return;
  float values[3] = {};
  constexpr std::string_view errors[] = {"# !! Error :  3rd parameter incorrect ? ",
                                         "# !! Error :  4th parameter incorrect ? ",
                                         "# !! Error :  5th parameter incorrect ? "};
  for (int n = 3; n <= command.count(); ++n) {
    const auto number = gx_string_to_shortreal(command.word(n));
    if (number.error) return refuse(echo, command, errors[n - 3]);
    values[n - 3] = number.value;
  }
  if (command.count() == 3) values[1] = values[2] = values[0];
  if (command.count() == 4) {
    values[2] = values[1];
    values[1] = (values[0] + values[2]) * 0.5F;
  }
  auto& entry = add_entry(kv_sext.parameter);
  entry.name = gx_string(command.word(2));
  std::copy(std::begin(values), std::end(values), entry.nvalue);
  kv_echo(echo, command);
}

void kv_primitive_cmd(const kv_command_t& command) {
  constexpr std::string_view echo = " PRIMitive ";
  if (!has_room(kv_sext.primitive, "PRIMitive", echo, command)) return;
  auto& entry = add_entry(kv_sext.primitive);
  entry.name = gx_string(command.word(2));
  entry.nvalue = gx_string(command.word(3));
  kv_echo(echo, command);
}

void kv_property_instance_cmd(const kv_command_t& command) {
  keep_properties(command, kv_sext.property_instance, "PROPerty INStance", " PROPerty INStance ");
}
void kv_property_pin_cmd(const kv_command_t& command) {
  keep_properties(command, kv_sext.property_pin, "PROPerty PIN", " PROPerty PIN  ");
}
void kv_property_net_cmd(const kv_command_t& command) {
  keep_properties(command, kv_sext.property_net, "PROPerty NET", " PROPerty NET ");
}

void kv_time_step_cmd(const kv_command_t& command) {
  constexpr std::string_view echo = " TIMe STEp ";
  const auto step = gx_string_to_shortreal(command.word(3));
  if (step.error) return refuse(echo, command, "# !! Time step INVALID ? ", 3);
  if (step.value < 0) {
    return kv_refuse("# TIME STEp ", command, "# ! Time step : Invalid ( < 0 ) ? ", 3);
  }
  kv_sext.time_step = step.value;
  kv_echo(echo, command, 3);
}

void kv_store_size_cmd(const kv_command_t& command) {
  constexpr std::string_view echo = " STOre SIZe ";
  const auto size = gx_string_to_int32(command.word(3));
  if (size.error || size.value < kv_min_records || size.value > kv_max_records) {
    refuse(echo, command, "# !! Error :  3rd parameter incorrect ? ", 3);
    return gx_tell_detail("# !! STOre SIZe takes ", std::to_string(kv_min_records), " to ",
                          std::to_string(kv_max_records), " ");
  }
  kv_sext.store_size = size.value;
  kv_echo(echo, command, 3);
}

void kv_generate_data_cmd(const kv_command_t& command) {
  constexpr std::string_view echo = " GENerate DATa ";
  if (kv_pext.file_id_cur < 1 || kv_pext.file_id_cur > gx_max_files) {
    return refuse(echo, command, "# !! Error :  No sheet available in window ? ", 3);
  }
  const auto on = kv_on_or_off(command.word(3), "OFF");
  if (!on) return refuse(echo, command, "# !! Error : 3rd parameter invalid ? ", 3);
  kv_pext.gen_data = *on;
  gx_tell(echo, *on ? "ON " : "OFF ");
}

void record_counts() {
  const auto& info = kv_sext.general_info;
  kv_record("counts", {{"instances", kv_sext.insts.count},
                       {"macros", kv_sext.macros.count},
                       {"pins", kv_sext.pins.count},
                       {"macro_pins", kv_sext.pinms.count},
                       {"nets", kv_sext.nets.count},
                       {"errors", info.num_errors},
                       {"warnings", info.num_warnings}});
}

void kv_run_cmd(const kv_command_t&) {
  // A key file may say RUN before the session is complete.
  if (kv_sext.designfile == -1) {
    gx_tell("# RUN ");
    return gx_display_list(kv_no_sheet, gx_line_kind::error);
  }
  const kv_run_result result = kv_run_expansion({.setup = kv_sext,
                                                 .design = kv_sext,
                                                 .sheets = kv_pext.arrayof_file,
                                                 .expand_level = kv_pext.expand_level,
                                                 .macro_level = kv_pext.macro_level,
                                                 .watcher = kv_watch_run,
                                                 .origins = &kv_sext.origins},
                                                kv_sext.designfile, kv_pext.gen_data);
  if (result == kv_run_result::done) record_counts();
  if (result == kv_run_result::done || result == kv_run_result::write_failed) anchor_sim_path();
  kv_follow_run();
}

constexpr kv_command_row_t expand_rows[] = {
    // clang-format off
    {{"PARAM"}, "PARAMeter name low [[typical] high]", kv_parameter_cmd, "# PARAMeter "},
    {{"PRIMI"}, "PRIMItive property [value]", kv_primitive_cmd, "# PRIMitive "},
    {{"PRO", "INS"}, "PROPerty INStance type name ...", kv_property_instance_cmd, "# PROPerty INStance ", 3},
    {{"PRO", "NET"}, "PROPerty NET type name ...", kv_property_net_cmd, "# PROPerty NET ", 3},
    {{"PRO", "PIN"}, "PROPerty PIN type name ...", kv_property_pin_cmd, "# PROPerty PIN  ", 3},
    {{"TIM", "STE"}, "TIMe STEp value", kv_time_step_cmd, "# TIMe STEp ", 3},
    {{"STO", "SIZ"}, "STOre SIZe number", kv_store_size_cmd, "# STOre SIZe ", 3},
    {{"GEN", "DAT"}, "GENerate DATa ON or OFF", kv_generate_data_cmd, "# GENerate DATa ", 3},
    {{"RUN"}, "RUN", kv_run_cmd, "# RUN ", kv_no_words},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_expand_commands() { return expand_rows; }
