#include "app/check/cells.h"

#include <algorithm>

#include "expand/sheet_slots.h"
#include "gx/text/at.h"

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
  auto& component = *gx_at(cache_.components, symbol.component);
  const bool is_usable = component.symbol_found && component.sheet_state == kv_component_t::found;
  return is_usable ? &component.sheet : nullptr;
}
