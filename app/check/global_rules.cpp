// Which globals a net of a sheet is on, by globals on the sheet and through the blocks.
#include <algorithm>

#include "app/check/sheet_findings.h"
#include "gx/text/at.h"

namespace {

bool add_global(std::vector<std::int32_t>& globals, std::int32_t global) {
  if (std::ranges::find(globals, global) != globals.end()) return false;
  globals.push_back(global);
  return true;
}

}  // namespace

void kv_global_rules::take_block(kv_sheet_t& sheet, kv_sheet_inst_t& inst, kv_sheet_t& below,
                                 nets_t& nets) {
  const nets_t& inner = nets_of(below);
  if (inner.empty()) return;
  const std::int32_t* place = kv_pins_of_ports(sheet, inst, below);
  for (const auto& port : below.ports) {
    const std::int32_t pin_place = *place++;
    if (pin_place < 0 || port.group < 0) continue;
    const auto& pin = gx_at(sheet.pins, inst.first_pin + pin_place);
    const std::int32_t width = std::max(gx_at(below.groups, port.group).width, 1);
    if (pin.group < 0 || pin.range_error || pin.width != width) continue;
    for (std::int32_t member = 0; member < width; ++member) {
      const auto at = inner.find({port.group, member});
      if (at == inner.end()) continue;
      net_t& net = nets[{pin.group, pin.position + member}];
      for (const auto global : at->second.globals) add_global(net.globals, global);
      net.most = std::max(net.most, at->second.globals.size());
    }
  }
}

const kv_global_rules::nets_t& kv_global_rules::nets_of(kv_sheet_t& sheet) {
  const auto [at, is_new] = nets_.try_emplace(&sheet);
  if (!is_new) return at->second;  // also of a sheet inside itself: what is known so far
  nets_t nets;
  for (const auto& global : sheet.globals) {
    if (global.group < 0 || global.position < 0 || !(global.usable || global.is_second)) continue;
    net_t& net = nets[{global.group, global.position}];
    add_global(net.globals, global.run_global);
    net.most = std::max<std::size_t>(net.most, 1);
  }
  for (const auto& symbol : sheet.symbols) {
    kv_sheet_t* below = cells_.below(symbol);
    if (below == nullptr || below->ends_at_port) continue;
    for (std::int32_t i = 0; i < symbol.nb_of_inst; ++i) {
      auto& inst = gx_at(sheet.insts, symbol.first_inst + i);
      if (!inst.is_primitive) take_block(sheet, inst, *below, nets);
    }
  }
  return nets_[&sheet] = std::move(nets);
}

void kv_global_rules::check(kv_cell_findings_t& found) {
  kv_sheet_t& sheet = *found.cell.sheet;
  for (const auto& [where, net] : nets_of(sheet)) {
    if (net.globals.size() <= net.most) continue;  // reported on the sheet below, if at all
    const auto& group = gx_at(sheet.groups, where.first);
    const auto& master = gx_at(sheet.nets, group.master);
    std::string words = "globals on one net :";
    for (const auto global : net.globals) {
      words += " \"" + gx_at(cells_.globals(), global).nvalue + "\"";
    }
    std::string piece(sheet.view(master.suffix));
    if (group.width > 0) piece += "_" + std::to_string(where.second);
    found.add(kv_rule::globals_joined, piece, master.object_id, std::move(words));
  }
}
