#include "app/check/cells.h"

#include "gx/text/at.h"

kv_cells_t::kv_cells_t(kv_sheets_t& sheets, const look_t& look) : sheets_(sheets) {
  const auto enter = [&](kv_component_t& component, const std::string& path) {
    cells_.push_back({&component.sheet, path});
    look(cells_.back(), *component.file);
    component.file.reset();
    return true;
  };
  const auto leave = [&](kv_sheet_t& sheet, const kv_sheet_symbol_t& symbol,
                         const kv_component_t& below) {
    if (below.sheet_state == kv_component_t::found) return;
    const bool is_damaged = below.sheet_state == kv_component_t::damaged;
    missing_.push_back(
        {&sheet, kv_first_block(sheet, symbol), is_damaged ? below.why_no_sheet : "not found"});
  };
  kv_analysed(sheets_, sheets_.top);
  kv_walk_down(sheets_, {enter, leave});
}

kv_sheet_t* kv_cells_t::below(const kv_sheet_symbol_t& symbol) const {
  if (symbol.component < 0) return nullptr;
  auto& component = *gx_at(sheets_.components, symbol.component);
  const bool is_usable = component.symbol_found && component.sheet_state == kv_component_t::found;
  return is_usable ? &component.sheet : nullptr;
}
