// The components that a run has met.
#include "expand/sheet_cache.h"

#include <algorithm>

#include "expand/estimate.h"
#include "expand/messages.h"
#include "expand/sheet_slots.h"
#include "gx/db/link_file.h"
#include "gx/db/record_codec.h"
#include "gx/db/sheet_shape.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

gx_file_version_t current_version(std::string_view directory, std::string_view filetype) {
  gx_file_version_t version = gx_file_get_file_version(directory, filetype);
  // A link file without a number is as good as none.
  if (version.link_value.len > 0) version.why.clear();
  version.found = version.found && version.valid;
  return version;
}

// Looks a component's sheet up and reads it, once.
void read_sheet(kv_component_t& component, kv_sheet_cache_t& cache) {
  if (component.sheet_state != kv_component_t::unknown) return;
  const gx_file_version_t version = current_version(component.directory, "sheet");
  component.sheet_state = kv_component_t::missing;
  if (!version.found) {
    component.why_damaged = version.why;
    return;
  }
  const gx_load_t load = gx_load_file(gx_view(version.file_pathname));
  if (load.code != gx_code::all_is_ok) {
    component.sheet_state = kv_component_t::damaged;
    component.why_damaged = load.message;
    return;
  }
  component.sheet_state = kv_component_t::found;
  component.has_primary = load.file->primary_object > 0;
  component.fault = gx_sheet_fault(*load.file);
  component.is_checked = load.file->check_data_done == 0;
  component.has_no_error = load.file->num_errors <= 0;
  component.sheet =
      kv_analyse_sheet(*load.file, gx_view(version.file_pathname), cache.setup, cache.globals);
}

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
    if (inner.tied_global < 0 || inner.width > 0 || pin.group < 0 || pin.width != 1) continue;
    auto& outer = gx_at(above.groups, pin.group);
    if (outer.width <= 0 && outer.tied_global < 0) outer.tied_global = inner.tied_global;
  }
}

}  // namespace

kv_component_t& kv_component_of(kv_sheet_cache_t& cache, const kv_sheet_t& sheet,
                                kv_sheet_symbol_t& symbol) {
  if (symbol.component < 0) {
    const std::string directory(sheet.view(symbol.directory));
    const auto next = static_cast<std::int32_t>(cache.components.size());
    const auto [at, is_new] = cache.by_directory.try_emplace(directory, next);
    symbol.component = at->second;
    if (is_new) {
      auto& component = *cache.components.emplace_back(std::make_unique<kv_component_t>());
      const gx_file_version_t version = current_version(directory, "symbol");
      component.directory = directory;
      component.symbol_found = version.found;
      component.why_no_symbol = version.why;
      component.symbol_version = version.version;
    }
  }
  return *gx_at(cache.components, symbol.component);
}

kv_sheet_t* kv_get_sheet_for_expand(kv_sheet_cache_t& cache, const kv_sheet_t& sheet,
                                    kv_sheet_symbol_t& symbol) {
  kv_component_t& component = kv_component_of(cache, sheet, symbol);
  const std::string_view path = sheet.view(symbol.path);
  if (!component.symbol_found) {
    kv_tell(kv_message::block_symbol_missing, {}, path, component.why_no_symbol);
  } else if (!symbol.version_valid) {
    kv_tell(kv_message::block_version_invalid, {}, path);
  } else if (symbol.version != component.symbol_version) {
    kv_tell(kv_message::block_version_old, {}, path);
  }

  read_sheet(component, cache);
  if (component.sheet_state == kv_component_t::missing) {
    kv_tell(kv_message::sheet_missing, {}, path, component.why_damaged);
    return nullptr;
  }
  if (component.sheet_state == kv_component_t::damaged) {
    kv_tell(kv_message::sheet_damaged, {}, path, component.why_damaged);
    return nullptr;
  }
  if (!component.fault.empty())
    kv_tell(kv_message::sheet_not_whole, {}, path,
            component.has_primary ? std::string_view(component.fault) : "");
  if (!component.is_checked) kv_tell(kv_message::sheet_unchecked, {}, path);
  if (!component.has_no_error) kv_tell(kv_message::sheet_with_errors, {}, path);
  return &component.sheet;
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

void kv_find_tied_globals(kv_sheet_cache_t& cache, kv_sheet_t& sheet, int level) {
  if (sheet.ties_known || level > kv_max_levels) return;
  sheet.ties_known = true;  // from here on, so that a sheet inside itself ends the search
  kv_estimate_own(cache.setup, sheet);
  for (const auto& global : sheet.globals) {
    if (!global.usable) continue;
    auto& group = gx_at(sheet.groups, global.group);
    if (group.width <= 0 && group.tied_global < 0) group.tied_global = global.run_global;
  }
  for (auto& symbol : sheet.symbols) {
    kv_component_t& component = kv_component_of(cache, sheet, symbol);
    const auto begin = sheet.insts.begin() + symbol.first_inst;
    const auto end = begin + symbol.nb_of_inst;
    const bool is_leaf =
        std::all_of(begin, end, [](const auto& inst) { return inst.is_primitive; });
    if (is_leaf || !component.symbol_found) continue;
    read_sheet(component, cache);
    if (component.sheet_state != kv_component_t::found || component.sheet.ends_at_port) continue;
    kv_find_tied_globals(cache, component.sheet, level + 1);
    for (auto inst = begin; inst != end; ++inst) {
      if (inst->is_primitive) continue;
      tie_through(sheet, *inst, component.sheet);
      kv_estimate_below(sheet, component.sheet);
    }
  }
}
