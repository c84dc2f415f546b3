#include "import/kept_properties.h"

#include <algorithm>
#include <utility>
#include <vector>

void gxi_keep_most_used(gxi_design_t& design, std::map<std::string, int> uses) {
  for (const auto& cell : design.cells)
    for (const auto& property : cell.symbol.defaults) ++uses[property.name];
  std::vector<std::pair<int, std::string>> order;
  for (const auto& [name, count] : uses) order.emplace_back(-count, name);
  std::sort(order.begin(), order.end());
  for (const auto& [count, name] : order) design.kept_of_instances.push_back(name);
}
