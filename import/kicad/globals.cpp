#include "import/kicad/globals.h"

#include <algorithm>

#include "gx/text/at.h"
#include "import/drawing/names.h"

const std::string& gxi_kicad_globals_t::first(const std::string& name) {
  auto found = same_.find(name);
  if (found == same_.end()) found = same_.emplace(name, name).first;
  while (found->second != found->first) found = same_.find(found->second);
  return found->first;
}

void gxi_kicad_globals_t::join(const std::vector<std::string>& names) {
  for (const auto& name : names) {
    const auto &a = first(names.front()), &b = first(name);
    if (a != b) same_[std::max(a, b)] = std::min(a, b);
  }
}

void gxi_kicad_globals_t::share(gxi_design_t& design) {
  gxi_names_t taken('_');
  std::map<std::string, std::string> given;
  const auto global = [&](const std::string& drawn) {
    const auto [found, is_new] = given.emplace(first(drawn), std::string());
    if (is_new) found->second = taken.take(found->first);
    return found->second;
  };
  for (auto& one : design.cells) {
    if (!one.sheet) continue;
    for (auto& net : one.sheet->nets)
      if (!net.global.empty()) net.global = global(net.global);
    for (auto& instance : one.sheet->instances)
      if (instance.kind == gxi_kind::global)
        instance.name = gx_at(one.sheet->nets, instance.nets.front()).global;
  }
  auto& top = *gx_at(design.cells, design.top).sheet;
  for (auto& net : top.nets)
    if (net.global.empty() && !net.name.empty() && taken.has(net.name)) {
      if (net.name_look) top.texts.push_back({net.name, *net.name_look});
      net.name_look.reset();
      net.name = taken.take(net.name);
    }
}
