#include "import/drawing/kept_properties.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/drawing/names.h"

std::string gxi_property_name(std::string_view attribute) {
  for (const auto* const meant : {"CLASS", "INST", "GLOBAL", "NET", "PIN", "PINTYPE"})
    if (gx_iden(attribute, meant)) return std::string(attribute) + "_";
  return std::string(attribute);
}

bool gxi_class_has_meaning(std::string_view value) {
  return gx_iden(value, "G") || gx_iden(value, "P") || gx_equal("PORT", value);
}

void gxi_keep_most_used(gxi_design_t& design, std::map<std::string, int> uses) {
  for (const auto& cell : design.cells)
    for (const auto& property : cell.symbol.defaults) ++uses[property.name];
  std::vector<std::pair<int, std::string>> order;
  for (const auto& [name, count] : uses) order.emplace_back(-count, name);
  std::sort(order.begin(), order.end());
  for (const auto& [count, name] : order) design.kept_of_instances.push_back(name);
}

void gxi_drop_doubled_properties(gxi_design_t& design) {
  std::vector<std::set<std::string>> given(design.cells.size());
  for (const auto& one : design.cells)
    if (one.sheet)
      for (const auto& instance : one.sheet->instances)
        for (const auto& property : instance.properties)
          gx_at(given, instance.symbol).insert(gx_upper(property.name));
  for (std::size_t i = 0; i < given.size(); ++i)
    std::erase_if(design.cells[i].symbol.properties,
                  [&](const auto& property) { return given[i].contains(gx_upper(property.name)); });
}
