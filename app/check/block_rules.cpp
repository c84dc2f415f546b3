// The pins of a block and the ports of the sheet that it stands for: each has its counterpart.
#include <algorithm>

#include "app/check/sheet_findings.h"
#include "gx/text/at.h"

namespace {

// The first block of a symbol speaks for all of that symbol on the sheet.
void check_block(kv_sheet_t& sheet, kv_sheet_inst_t& block, const kv_sheet_t& below,
                 kv_cell_findings_t& found) {
  const std::int32_t* const pins = kv_pins_of_ports(sheet, block, below);
  const std::span<const std::int32_t> pin_of_port(pins, below.ports.size());
  const std::string inst(sheet.view(block.suffix));
  for (std::int32_t i = 0; i < block.nb_of_pin; ++i) {
    if (std::ranges::find(pin_of_port, i) != pin_of_port.end()) continue;
    const auto& pin = gx_at(sheet.pins, block.first_pin + i);
    found.add(kv_rule::port_lacking, inst + std::string(sheet.view(pin.suffix)), pin.object_id,
              "no such port on the sheet of the block : \"" + below.file_path + "\"");
  }
  std::vector<std::string_view> told;
  for (std::size_t i = 0; i < below.ports.size(); ++i) {
    const std::string_view name = below.view(below.ports[i].bare_name);
    if (pin_of_port[i] >= 0 || std::ranges::find(told, name) != told.end()) continue;
    told.push_back(name);
    found.add(kv_rule::pin_lacking, inst + "/" + std::string(name), block.object_id,
              "the block has no pin for this port of \"" + below.file_path + "\"");
  }
}

}  // namespace

void kv_check_blocks(const kv_cells_t& cells, kv_cell_findings_t& found) {
  kv_sheet_t& sheet = *found.cell.sheet;
  for (const auto& symbol : sheet.symbols) {
    const kv_sheet_t* below = cells.below(symbol);
    if (below == nullptr) continue;
    if (auto* block = kv_first_block(sheet, symbol)) check_block(sheet, *block, *below, found);
  }
}
