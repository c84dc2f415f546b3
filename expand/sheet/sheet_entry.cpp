#include "expand/sheet/sheet_entry.h"

#include "expand/messages.h"
#include "expand/run/estimate.h"
#include "expand/sheet/sheet_analysis.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

std::int32_t pin_of_port(const kv_sheet_t& above, const kv_sheet_inst_t& inst,
                         std::string_view name, std::string_view bare_name) {
  for (std::int32_t i = 0; i < inst.nb_of_pin; ++i) {
    const auto& pin = gx_at(above.pins, inst.first_pin + i);
    const std::string_view pin_name = above.view(pin.suffix).substr(1);
    const std::string_view bare = pin.pin_start != pin.pin_end ? kv_bare_name(pin_name) : pin_name;
    if (gx_iden(pin_name, name) || gx_iden(bare, bare_name)) return i;
  }
  return -1;
}

// What the sheet of an instance ties its pins' nets to.
void tie_through(kv_sheet_t& above, kv_sheet_inst_t& inst, const kv_sheet_t& below) {
  const std::int32_t* place = kv_pins_of_ports(above, inst, below);
  for (const auto& port : below.ports) {
    const std::int32_t pin_place = *place++;
    if (pin_place < 0 || port.group < 0) continue;
    const auto& inner = gx_at(below.groups, port.group);
    const auto& pin = gx_at(above.pins, inst.first_pin + pin_place);
    if (inner.tied_global < 0 || pin.group < 0 || pin.width != 1) continue;
    auto& outer = gx_at(above.groups, pin.group);
    if (outer.width <= 0 && outer.tied_global < 0) outer.tied_global = inner.tied_global;
  }
}

}  // namespace

kv_sheet_t* kv_get_sheet_for_expand(kv_sheets_t& sheets, const kv_sheet_t& sheet,
                                    kv_sheet_symbol_t& symbol) {
  kv_component_t& component = kv_component_of(sheets, sheet, symbol);
  const std::string_view path = sheet.view(symbol.path);
  if (!component.symbol_found) {
    kv_tell(kv_message::block_symbol_missing, {}, path, component.why_no_symbol);
  } else if (!symbol.version_valid) {
    kv_tell(kv_message::block_version_invalid, {}, path);
  } else if (symbol.version != component.symbol_version) {
    kv_tell(kv_message::block_version_old, {}, path);
  }

  kv_sheet_t* below = kv_analysed(sheets, component);
  if (component.sheet_state == kv_component_t::missing) {
    kv_tell(kv_message::sheet_missing, {}, path, component.why_no_sheet);
    return nullptr;
  }
  if (component.sheet_state == kv_component_t::damaged) {
    kv_tell(kv_message::sheet_damaged, {}, path, component.why_no_sheet);
    return nullptr;
  }
  if (!component.fault.empty())
    kv_tell(kv_message::sheet_not_whole, {}, path,
            component.has_primary ? std::string_view(component.fault) : "");
  if (!component.is_checked) kv_tell(kv_message::sheet_unchecked, {}, path);
  if (!component.has_no_error) kv_tell(kv_message::sheet_with_errors, {}, path);
  return below;
}

const std::int32_t* kv_pins_of_ports(kv_sheet_t& above, kv_sheet_inst_t& inst,
                                     const kv_sheet_t& below) {
  if (inst.port_pins < 0) {
    inst.port_pins = static_cast<std::int32_t>(above.port_pins.size());
    for (const auto& port : below.ports) {
      above.port_pins.push_back(
          pin_of_port(above, inst, below.view(port.name), below.view(port.bare_name)));
    }
  }
  return above.port_pins.data() + inst.port_pins;
}

void kv_find_tied_globals(kv_sheets_t& sheets) {
  const auto enter = [&](kv_component_t& component, const std::string&) {
    kv_sheet_t& sheet = component.sheet;
    if (&component != &sheets.top && sheet.ends_at_port) return false;
    kv_estimate_own(*sheets.setup, sheet);
    for (const auto& global : sheet.globals) {
      if (!global.usable) continue;
      auto& group = gx_at(sheet.groups, global.group);
      if (group.width <= 0 && group.tied_global < 0) group.tied_global = global.run_global;
    }
    return true;
  };
  const auto leave = [&](kv_sheet_t& sheet, const kv_sheet_symbol_t& symbol,
                         kv_component_t& below) {
    if (below.sheet_state != kv_component_t::found || below.sheet.ends_at_port) return;
    for (std::int32_t i = 0; i < symbol.nb_of_inst; ++i) {
      auto& inst = gx_at(sheet.insts, symbol.first_inst + i);
      if (inst.is_primitive) continue;
      tie_through(sheet, inst, below.sheet);
      kv_estimate_below(sheet, below.sheet);
    }
  };
  kv_walk_down(sheets, {enter, leave});
}
