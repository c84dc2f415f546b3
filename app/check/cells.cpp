#include "app/check/cells.h"

#include <algorithm>

#include "expand/sheet_slots.h"

kv_cells_t::kv_cells_t(const kv_setup_t& setup, const gx_file_gene_recf_t& top,
                       std::string_view top_path)
    : cache_{setup, {}, {}, {}}, top_(kv_analyse_sheet(top, top_path, setup, cache_.globals)) {
  walk(top_, "", 1);
}

void kv_cells_t::walk(kv_sheet_t& sheet, const std::string& path, int level) {
  if (!walked_.insert(&sheet).second) return;
  const std::size_t cell = cells_.size();
  cells_.push_back({&sheet, path});
  for (auto& symbol : sheet.symbols) {
    const auto first = sheet.insts.begin() + symbol.first_inst;
    const auto end = first + symbol.nb_of_inst;
    const auto block = std::find_if(first, end, [](const auto& i) { return !i.is_primitive; });
    if (block == end) continue;
    const kv_component_t& component = kv_component_of(cache_, sheet, symbol);
    if (!component.symbol_found) continue;  // which is a finding of the sheet
    kv_sheet_t* below = kv_get_sheet_for_expand(cache_, sheet, symbol);
    if (below == nullptr) {
      const bool is_damaged = component.sheet_state == kv_component_t::damaged;
      missing_.push_back({cell, &*block, is_damaged ? component.why_damaged : "not found"});
    } else if (level < kv_max_levels) {
      walk(*below, path + std::string(sheet.view(block->suffix)), level + 1);
    }
  }
}

kv_sheet_t* kv_cells_t::below(const kv_sheet_symbol_t& symbol) const {
  if (symbol.component < 0) return nullptr;
  auto& component = *cache_.components[static_cast<std::size_t>(symbol.component)];
  const bool is_usable = component.symbol_found && component.sheet_state == kv_component_t::found;
  return is_usable ? &component.sheet : nullptr;
}

const kv_cells_t::names_t& kv_cells_t::names_of(const kv_sheet_t& sheet) {
  const auto [at, is_new] = names_.try_emplace(&sheet);
  if (is_new) {
    for (const auto& net : sheet.nets) {
      at->second.nets.try_emplace(sheet.view(net.suffix), net.object_id);
    }
    for (const auto& inst : sheet.insts) {
      at->second.insts.try_emplace(sheet.view(inst.suffix), &inst);
    }
  }
  return at->second;
}

// Names may hold a "/" themselves, so every piece that ends before one is tried.
bool kv_cells_t::find(kv_place_kind kind, const kv_sheet_t& sheet, std::string_view rest,
                      kv_place_t& place) {
  const names_t& names = names_of(sheet);
  const auto found = [&](int object_id) {
    place.sheet = &sheet;
    place.object_id = object_id;
    return true;
  };
  if (kind == kv_place_kind::net) {
    if (const auto net = names.nets.find(rest); net != names.nets.end()) return found(net->second);
  } else if (kind == kv_place_kind::inst) {
    const auto inst = names.insts.find(rest);
    if (inst != names.insts.end()) return found(inst->second->object_id);
  }
  for (auto slash = rest.find('/', 1); slash != rest.npos; slash = rest.find('/', slash + 1)) {
    const auto at = names.insts.find(rest.substr(0, slash));
    if (at == names.insts.end()) continue;
    const kv_sheet_inst_t& inst = *at->second;
    const std::string_view further = rest.substr(slash);
    if (kind == kv_place_kind::pin) {
      for (std::int32_t i = 0; i < inst.nb_of_pin; ++i) {
        const auto& pin = sheet.pins[static_cast<std::size_t>(inst.first_pin + i)];
        if (sheet.view(pin.suffix) != further) continue;
        place.pin = &pin;
        return found(pin.object_id);
      }
    }
    if (inst.is_primitive || inst.symbol < 0) continue;
    const auto* sub = below(sheet.symbols[static_cast<std::size_t>(inst.symbol)]);
    if (sub == nullptr) continue;
    const std::size_t here = place.at.size();
    place.at += rest.substr(0, slash);
    if (find(kind, *sub, further, place)) return true;
    place.at.resize(here);
  }
  return false;
}

kv_place_t kv_cells_t::place_of(kv_place_kind kind, std::string_view path) {
  kv_place_t place;
  if (!find(kind, top_, path, place)) place = {};
  return place;
}
