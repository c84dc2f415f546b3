// VALues ON, VALues COLour: values on the sheet in view. SHOw WAVes: waveforms beside it.
#include <algorithm>
#include <string>
#include <vector>

#include "app/find/net_choice.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "app/values/asked.h"
#include "app/values/shown_values.h"
#include "app/values/waves.h"
#include "gx/db/objects_of.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "results/engineering.h"

namespace {

void kv_values_on_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues ON ";
  if (kv_results_for(refused, command) == nullptr) return;
  kv_values_shown_t shown = kv_pext.values_shown;
  const bool nets = gx_equal("NET", command.word(3)), devices = gx_equal("DEV", command.word(3));
  if (command.count() > 2 && !nets && !devices) {
    return kv_refuse(refused, command, "# !! Error :  3rd parameter incorrect ? ", 3);
  }
  shown.nets = !devices;
  shown.devices = !nets;
  kv_show_values(shown);
  kv_redraw_views();
  kv_echo(" VALues ON ", command, 3);
}

void kv_values_color_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VALues COLour ";
  if (kv_results_for(refused, command) == nullptr) return;
  const auto low = rs_read_number(command.word(3)), high = rs_read_number(command.word(4));
  if (!low || !high || *low >= *high) {
    return kv_refuse(refused, command, "# !! Error : Number invalid ? ", 3);
  }
  kv_values_shown_t shown = kv_pext.values_shown;
  shown.colors = true;
  shown.low = *low;
  shown.high = *high;
  kv_show_values(shown);
  kv_redraw_views();
  kv_echo(" VALues COLour ", command, 3);
}

void kv_values_color_off_cmd(const kv_command_t&) {
  kv_values_shown_t shown = kv_pext.values_shown;
  shown.colors = false;
  kv_show_values(shown);
  kv_redraw_views();
  gx_tell(" VALues COLour OFF ");
}

// --- SHOw WAVes

// The nets that are selected on the sheet in view, and those that HIGhlight marks.
std::vector<std::int32_t> chosen_nets(const kv_results_t& results) {
  const auto design = kv_design_of(results);
  std::vector<std::int32_t> nets;
  const auto view = kv_edit_view();
  const std::int32_t visit = kv_visit_at(design, gx_view(kv_pext.cur_sim_path));
  if (view.has_sheet() && visit >= 0) {
    for (const int net : lb_nets(view.file())) {
      if (kv_is_chosen_net(view.file(), net)) nets.push_back(kv_flat_net_of(design, visit, net));
    }
  }
  for (const auto& path : kv_pext.highlighted) {
    const std::string key = kv_path_key(path.path);
    for (const auto object : design.paths.find({&key, 1}, SIZE_MAX)) {
      if (object.what == kv_named::net) nets.push_back(object.index);
    }
  }
  std::erase(nets, 0);
  return nets;
}

void kv_show_waves_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SHOw WAVes ";
  const kv_results_t* const results = kv_results_for(refused, command);
  if (results == nullptr) return;
  std::vector<std::int32_t> nets;
  for (int n = 3; n <= command.count(); ++n) {
    const auto more = kv_wanted_value_nets(refused, command, *results, command.word(n));
    if (more.empty()) return;
    nets.insert(nets.end(), more.begin(), more.end());
  }
  if (command.count() == 2) nets = chosen_nets(*results);
  if (nets.empty()) return kv_refuse(refused, command, "# !! Error : No NET selected ? ", 3);
  const auto design = kv_design_of(*results);
  std::vector<std::string> paths;
  for (const std::int32_t net : nets) {
    const std::string path(design.netlist.path({kv_named::net, net}));
    if (std::ranges::find(paths, path) == paths.end()) paths.push_back(path);
  }
  if (!kv_show_waves(paths)) {
    return kv_refuse(refused, command, "# !! Error : The file has no value of the nets ? ", 3);
  }
  for (const auto& path : paths) gx_tell("# ", path);
  kv_echo(" SHOw WAVes ", command, 3);
}

void kv_show_waves_off_cmd(const kv_command_t&) {
  kv_hide_waves();
  gx_tell(" SHOw WAVes OFF ");
}

constexpr kv_command_row_t shown_rows[] = {
    // clang-format off
    {{"VAL", "ON"}, "VALues ON [NETs or DEVices]", kv_values_on_cmd, "# VALues ON ", 3},
    {{"VAL", "COL", "OFF"}, "VALues COLour OFF", kv_values_color_off_cmd, "# VALues COLour ", 3},
    {{"VAL", "COL"}, "VALues COLour low high", kv_values_color_cmd, "# VALues COLour ", 3},
    {{"SHO", "WAV", "OFF"}, "SHOw WAVes OFF", kv_show_waves_off_cmd, "# SHOw WAVes ", 3},
    {{"SHO", "WAV"}, "SHOw WAVes [path ...]", kv_show_waves_cmd, "# SHOw WAVes ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_shown_commands() { return shown_rows; }
