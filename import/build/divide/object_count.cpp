// The same objects that import/build/builder.cpp makes.
#include "import/build/divide/object_count.h"

#include "gx/text/at.h"

std::size_t gxi_count_objects(const gxi_design_t& design, const gxi_instance_t& instance) {
  const auto& symbol = gx_at(design.cells, instance.symbol).symbol;
  return 4 + instance.properties.size() + symbol.defaults.size() + symbol.pins.size();
}

std::size_t gxi_count_objects(const gxi_symbol_t& symbol) {
  return 6 + symbol.shapes.size() + symbol.texts.size() + symbol.properties.size() +
         (gxi_objects_of_pin - 1) * symbol.pins.size();
}

std::size_t gxi_count_objects(const gxi_design_t& design, const gxi_cell_t& cell) {
  std::size_t count = 16 + cell.sheet->shapes.size() + 2 * cell.sheet->texts.size();
  std::vector<bool> used(design.cells.size());
  for (const auto& instance : cell.sheet->instances) {
    count += gxi_count_objects(design, instance);
    gx_at(used, instance.symbol) = true;
  }
  for (std::size_t i = 0; i < used.size(); ++i)
    if (used[i]) count += gxi_count_objects(design.cells[i].symbol);
  for (const auto& net : cell.sheet->nets) count += gxi_objects_of_net + 3 * net.segments.size();
  return count;
}
