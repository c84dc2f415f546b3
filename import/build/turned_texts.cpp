#include "import/build/turned_texts.h"

#include <cstdlib>
#include <map>
#include <set>
#include <utility>

#include "gx/text/at.h"
#include "gx/text/kept_text.h"
#include "import/drawing/placement.h"

namespace {

// Whether the lines of the symbol's text lie where the whole text does.
bool keeps_lines(const gxi_instance_t& instance, const gxi_text_t& text) {
  const std::string kept = gx_kept_text(text.value);
  const auto in_symbol = gxi_lines(kept, text.look);
  if (in_symbol.size() < 2) return true;
  const auto seen = gxi_lines(kept, gxi_on_sheet(instance, text.look));
  for (std::size_t i = 0; i < seen.size(); ++i) {
    const auto look = gxi_on_sheet(instance, gxi_look_of(in_symbol[i], text.look));
    const auto alone = gxi_lines(in_symbol[i].text, look).front().at, whole = seen[i].at;
    if (std::abs(alone.x - whole.x) + std::abs(alone.y - whole.y) > text.look.height) return false;
  }
  return true;
}

}  // namespace

void gxi_hand_out_texts(gxi_design_t& design) {
  struct symbol_t {
    std::set<std::pair<int, bool>> turns{};  // that were looked at
    std::set<std::size_t> handed_out{};      // texts
  };
  std::map<int, symbol_t> symbols;  // by cell
  const auto each_instance = [&](auto&& take) {
    for (auto& cell : design.cells)
      if (cell.sheet)
        for (auto& instance : cell.sheet->instances)
          take(instance, gx_at(design.cells, instance.symbol).symbol.texts,
               symbols[instance.symbol]);
  };
  each_instance([](const auto& instance, const auto& texts, auto& symbol) {
    if (!symbol.turns.emplace(instance.rotate, instance.mirror).second) return;
    for (std::size_t i = 0; i < texts.size(); ++i)
      if (!keeps_lines(instance, texts[i])) symbol.handed_out.insert(i);
  });
  each_instance([](auto& instance, const auto& texts, const auto& symbol) {
    for (const auto i : symbol.handed_out)
      gxi_show(texts[i].value, gxi_on_sheet(instance, texts[i].look), instance.properties);
  });
  for (const auto& [cell, symbol] : symbols) {
    auto& texts = gx_at(design.cells, cell).symbol.texts;
    for (const auto i : symbol.handed_out) texts[i].value.clear();
    std::erase_if(texts, [](const auto& text) { return text.value.empty(); });
  }
}
