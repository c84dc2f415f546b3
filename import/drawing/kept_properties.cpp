#include "import/drawing/kept_properties.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <tuple>
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

void gxi_keep_most_used(gxi_design_t& design, const gxi_telling_t& telling,
                        const std::set<std::string>& used_up) {
  std::map<std::string, int> uses;
  const auto count = [&](const gxi_sheet_t& sheet) {
    for (const auto& instance : sheet.instances) {
      if (instance.kind != gxi_kind::part) continue;
      const auto& own = instance.properties;
      for (const auto& property : own)
        if (property.name.rfind("SHOWN", 0) != 0) ++uses[property.name];
      for (const auto& property : gx_at(design.cells, instance.symbol).symbol.defaults)
        if (std::none_of(own.begin(), own.end(),
                         [&](const auto& given) { return gx_iden(given.name, property.name); }))
          ++uses[property.name];
    }
  };
  for (const auto& cell : design.cells)
    if (cell.sheet) count(*cell.sheet);
  std::vector<std::tuple<std::ptrdiff_t, int, std::string>> order;
  for (const auto& [name, number] : uses) {
    const auto set =
        std::find_if(telling.begin(), telling.end(),
                     [&wanted = name](const auto& names) { return names.contains(wanted); });
    if (set != telling.end() || !used_up.contains(name))
      order.emplace_back(set - telling.begin(), -number, name);
  }
  std::sort(order.begin(), order.end());
  for (auto& [set, number, name] : order) design.kept_of_instances.push_back(std::move(name));
}

void gxi_make_overridden_defaults(gxi_design_t& design) {
  std::vector<std::set<std::string>> given(design.cells.size());
  for (const auto& one : design.cells)
    if (one.sheet)
      for (const auto& instance : one.sheet->instances)
        for (const auto& property : instance.properties)
          gx_at(given, instance.symbol).insert(gx_upper(property.name));
  for (std::size_t i = 0; i < given.size(); ++i) {
    auto& symbol = design.cells[i].symbol;
    const auto overridden = [&](const auto& property) {
      return given[i].contains(gx_upper(property.name));
    };
    std::ranges::copy_if(symbol.properties, std::back_inserter(symbol.defaults), overridden);
    std::erase_if(symbol.properties, overridden);
  }
}
