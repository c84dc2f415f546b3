// Counting each sheet once, and adding up what is below it.
#include "import/build/flat_size.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "gx/text/at.h"

namespace {

// Of what a sheet becomes. Each path will get longer by what is above the sheet.
struct sheet_size_t {
  std::int64_t paths = 0, other_texts = 0, characters = 0;

  // Of all else there is less: a pin has a path, a property a text.
  std::int64_t largest() const {
    // The end of a block of 1000 characters stays empty where a text does not fit.
    return std::max(paths + other_texts, characters + characters / 8);
  }
};

class counter {
 public:
  explicit counter(const gxi_design_t& design) : design_(design), known_(design.cells.size()) {}

  sheet_size_t count(int index) {
    auto& known = gx_at(known_, index);
    if (known) return *known;
    const auto& cell = gx_at(design_.cells, index);
    sheet_size_t size;
    for (const auto& instance : cell.sheet->instances)
      if (instance.kind == gxi_kind::part) add(size, instance, cell);
    for (const auto& net : cell.sheet->nets) {
      add_path(size, net.name.empty() ? 8 : net.name.size());
      add_text(size, net.name.empty() ? 8 : net.name.size());
      for (const auto& property : net.properties) add_property(size, property);
      add_property(size, {"NET", net.name, {}});
    }
    return *(known = size);
  }

 private:
  static void add_path(sheet_size_t& size, std::size_t length) {
    ++size.paths;
    size.characters += static_cast<std::int64_t>(length) + 1;
  }
  static void add_text(sheet_size_t& size, std::size_t length) {
    ++size.other_texts;
    size.characters += static_cast<std::int64_t>(length);
  }
  static void add_property(sheet_size_t& size, const gxi_property_t& property) {
    add_text(size, property.value.size());
  }

  void add(sheet_size_t& size, const gxi_instance_t& instance, const gxi_cell_t& on) {
    const auto& cell = gx_at(design_.cells, instance.symbol);
    add_path(size, instance.name.size());
    add_text(size, on.name.size() + 16);  // the file of the sheet
    for (const auto& property : instance.properties) add_property(size, property);
    for (const auto& property : cell.symbol.defaults) add_property(size, property);
    for (const auto& property : cell.symbol.properties) add_property(size, property);
    for (const auto& pin : cell.symbol.pins) {
      add_path(size, instance.name.size() + 1 + pin.name.size());
      for (const auto& property : pin.properties) add_property(size, property);
      add_property(size, {"PINTYPE", pin.type, {}});
    }
    if (!cell.sheet) return;
    const auto below = count(instance.symbol);
    size.paths += below.paths;
    size.other_texts += below.other_texts;
    size.characters +=
        below.characters + below.paths * (static_cast<std::int64_t>(instance.name.size()) + 1);
  }

  const gxi_design_t& design_;
  std::vector<std::optional<sheet_size_t>> known_;
};

}  // namespace

std::int64_t gxi_flat_size(const gxi_design_t& design) {
  return counter(design).count(design.top).largest();
}
