#include "app/hint/hint_text.h"

#include <cmath>
#include <cstdlib>
#include <optional>

#include "app/find/expanded.h"
#include "app/find/find_path.h"
#include "app/sheet/pick.h"
#include "app/sheet/walk.h"
#include "app/state.h"
#include "app/values/asked.h"
#include "expand/sheet/sheet_parts.h"
#include "expand/store.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gx/text/strings.h"

namespace {
using lines_t = std::vector<std::string>;
constexpr int shown_digits = 4;
constexpr std::size_t most_values = 4;

// The names down to the sheet in view: "", "/XR/X2".
std::string sheet_path() {
  std::string path(gx_view(kv_pext.cur_sim_path));
  while (path.ends_with('/')) path.pop_back();
  if (!path.empty() && !path.starts_with('/')) path.insert(0, 1, '/');
  return path;
}

// The design that names and values are of: that of the last RUN, else the one that the results were
// matched with.
struct design_t {
  kv_results_t* results = nullptr;  // null: none are open
  std::optional<kv_expanded_t> expanded{};

  design_t() {
    std::string fault;
    results = kv_results_now(fault);
    if (results != nullptr)
      expanded.emplace(kv_design_of(*results));
    else if (const auto last_run = kv_expanded())
      expanded.emplace(*last_run);
  }
};

void add_net_value(lines_t& lines, const design_t& design, std::int32_t net) {
  if (design.results == nullptr) return;
  const kv_results_t& results = *design.results;
  const kv_variable_t* const variable = results.matches.of_net(net);
  if (variable == nullptr) return;
  lines.push_back(
      kv_value_text(results, kv_value_at(results, results.place, *variable), "V", shown_digits) +
      kv_at_text(results, results.x));
}

void add_device_values(lines_t& lines, const design_t& design, const std::string& path) {
  if (design.results == nullptr || !design.expanded) return;
  const kv_results_t& results = *design.results;
  const std::string key = kv_path_key(path);
  for (const auto object : design.expanded->paths.find({&key, 1}, SIZE_MAX)) {
    if (object.what != kv_named::inst) continue;
    std::size_t count = 0;
    for (const auto& each : results.matches.of_device(object.index)) {
      if (++count > most_values) break;
      lines.push_back(each.parameter + " " +
                      kv_value_text(results, kv_value_at(results, results.place, each.variable),
                                    kv_unit_of(results, each), shown_digits));
    }
  }
}

std::string flat_path(const design_t& design, std::int32_t net) {
  return std::string(design.expanded->netlist.path({kv_named::net, net}));
}

lines_t lines_of_net(const gx_file_gene_recf_t& sheet, int net_id) {
  const design_t design;
  const std::string local = sheet_path() + "/" + lb_net_name(sheet, net_id);
  const auto* const record = gx_object_as<gx_object_net_rec_t>(sheet, net_id);
  std::string kind = record->is_bus == 0 ? "net"
                                         : "bus " + std::to_string(record->bus_start) + " to " +
                                               std::to_string(record->bus_end);
  std::int32_t net = 0;
  if (design.expanded) {
    const auto visit = kv_visit_at(*design.expanded, sheet_path());
    if (visit >= 0) net = kv_flat_net_of(*design.expanded, visit, net_id);
  }
  if (net == 0) return {local, kind};
  const std::string flat = flat_path(design, net);
  if (!gx_iden(flat, local)) kind += ", here " + lb_net_name(sheet, net_id);
  lines_t lines = {flat, kind};
  if (record->is_bus == 0) add_net_value(lines, design, net);
  return lines;
}

lines_t lines_of_pin(const gx_file_gene_recf_t& sheet, int inst, gx_pin_pair_t pin) {
  const design_t design;
  const std::string path =
      sheet_path() + "/" + lb_inst_name(sheet, inst) + "/" + lb_pin_name(sheet, pin);
  lines_t lines = {path, "pin"};
  if (!design.expanded) return lines;
  kv_drawings_t drawings;
  const auto nets = kv_search_nets(*design.expanded, drawings, path, 1);
  if (nets.empty()) return lines;
  lines.back() += " on " + flat_path(design, nets.front());
  add_net_value(lines, design, nets.front());
  return lines;
}

std::string_view last_name(std::string_view directory) {
  while (directory.ends_with('/')) directory.remove_suffix(1);
  return directory.substr(directory.rfind('/') + 1);
}

lines_t lines_of_instance(const gx_file_gene_recf_t& sheet, int inst) {
  const gx_string_record_t directory = kv_sheet_directory(sheet, inst);
  const std::string cell(last_name(gx_view(directory)));
  const auto role = kv_role_of(sheet, inst);
  if (role != kv_inst_role::part)
    return {lb_inst_name(sheet, inst), role == kv_inst_role::port ? "port" : "global net"};
  const std::string path = sheet_path() + "/" + lb_inst_name(sheet, inst);
  kv_drawings_t drawings;
  const bool is_block =
      !kv_found_primitive(kv_sext, sheet, inst) && drawings.below(sheet, inst) != nullptr;
  lines_t lines = {path, (is_block ? "block " : "device ") + cell};
  if (is_block) return lines;
  for (const std::string_view name : {"MODEL", "VALUE"}) {
    const std::string_view value = gx_prop_text(gx_find_inst_prop(sheet, inst, name));
    if (!value.empty()) lines.back().append("  ").append(value);
  }
  add_device_values(lines, design_t(), path);
  return lines;
}

// The pin nearest to the point.
struct found_pin_t {
  int inst = 0;  // 0: none
  gx_pin_pair_t pin{};
};
found_pin_t pick_pin(const gx_file_gene_recf_t& sheet, gx_pointreal_t point, std::int32_t room) {
  found_pin_t found;
  double nearest = room;
  for (const int inst : lb_instances(sheet)) {
    if (gx_inq_object_deleted(sheet, inst) || kv_role_of(sheet, inst) != kv_inst_role::part)
      continue;
    for (const gx_pin_pair_t pin : lb_pins(sheet, inst)) {
      if (gx_inq_object_deleted(sheet, pin.pinpropfam)) continue;
      const gx_pointreal_t at = gx_pin_abs_origin(sheet, pin.pinpropfam);
      const double away = std::hypot(double(at.x) - point.x, double(at.y) - point.y);
      if (away > nearest) continue;
      nearest = away;
      found = {inst, pin};
    }
  }
  return found;
}
}  // namespace

std::vector<std::string> kv_hint_lines(const gx_file_gene_recf_t& sheet, gx_pointreal_t point,
                                       std::int32_t room) {
  if (const found_pin_t found = pick_pin(sheet, point, room); found.inst != 0)
    return lines_of_pin(sheet, found.inst, found.pin);
  if (const int net = kv_pick_net(sheet, point, room)) return lines_of_net(sheet, net);
  if (const int inst = kv_pick_instance(sheet, point)) return lines_of_instance(sheet, inst);
  return {};
}
