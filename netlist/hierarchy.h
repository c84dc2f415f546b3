// The blocks of an expanded design, and what is inside each: the tree that its flat arrays no
// longer show, from the paths of its objects.
//
//   const kv_hierarchy_t blocks(netlist);
//   for (const std::int32_t inst : blocks.instances(macro)) ...   // leaves drawn in a block
//   for (const std::int32_t inner : blocks.macros(macro)) ...     // blocks drawn in it
//   blocks.walk([&](std::int32_t macro, int level) { ... });      // depth first, from the top
//
// The primary sheet is macro 0, which is inside nothing.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "gx/text/at.h"
#include "netlist/netlist.h"

// Made once for a design, which must stay as it is; 8 bytes for each instance and 12 for each
// macro. Names may hold a "/" themselves: an object is in the block with the longest path that its
// own path begins with.
template <typename Design>
class kv_hierarchy_t {
 public:
  explicit kv_hierarchy_t(kv_netlist_t<Design> netlist);

  // The macro that an instance or macro is drawn in; 0: the primary sheet.
  std::int32_t parent(kv_object_t object) const {
    return gx_at(object.what == kv_named::macro ? macros_.parent : insts_.parent, object.index);
  }
  // What is drawn in a macro, in the order of the arrays.
  auto instances(std::int32_t macro) const { return insts_.inside(macro); }
  auto macros(std::int32_t macro) const { return macros_.inside(macro); }

  // The macro whose path an object's path begins with: for nets, and for what has no parent() here.
  std::int32_t block_of(std::string_view path) const { return find_parent(path, 0); }
  // The file of the sheet of a macro, from what is drawn in it; "" when no instance is.
  std::string_view sheet(std::int32_t macro) const {
    for (const std::int32_t inst : instances(macro))
      return netlist_.file_path({kv_named::inst, inst});
    for (const std::int32_t inner : macros(macro))
      return netlist_.file_path({kv_named::macro, inner});
    return {};
  }

  // The name of an instance or macro on its sheet: the end of its path.
  std::string_view name(kv_object_t object) const {
    const std::size_t before = path(parent(object)).size() + 1;
    const std::string_view whole = netlist_.path(object);
    return whole.substr(std::min(before, whole.size()));
  }
  // Calls visit(macro, level) for the primary sheet (level 0) and every macro, each before what is
  // in it.
  template <typename Visit>
  void walk(Visit visit, std::int32_t macro = 0, int level = 0) const {
    visit(macro, level);
    for (const std::int32_t inner : macros(macro)) walk(visit, inner, level + 1);
  }

 private:
  // The objects of one kind: their parents, and for each parent those in it as a chain.
  struct inside_t {
    std::vector<std::int32_t> parent, next, first;
    void put(std::int32_t index, std::int32_t into) {  // the last one first
      gx_at(parent, index) = into;
      gx_at(next, index) = gx_at(first, into);
      gx_at(first, into) = index;
    }
    auto inside(std::int32_t macro) const {
      return kv_chain_t(gx_at(first, macro), static_cast<std::int32_t>(next.size()),
                        [this](std::int32_t index) { return gx_at(next, index); });
    }
  };

  std::string_view path(std::int32_t macro) const {
    return macro == 0 ? std::string_view() : netlist_.path({kv_named::macro, macro});
  }
  std::int32_t find_parent(std::string_view path, std::int32_t guess) const;

  kv_netlist_t<Design> netlist_;
  inside_t insts_, macros_;
  std::unordered_map<std::string_view, std::int32_t> by_path_;  // macros
};

template <typename Design>
kv_hierarchy_t<Design>::kv_hierarchy_t(kv_netlist_t<Design> netlist) : netlist_(netlist) {
  const std::int32_t nb_of_macros = netlist.count(kv_named::macro);
  by_path_.reserve(static_cast<std::size_t>(nb_of_macros));
  for (std::int32_t macro = 1; macro <= nb_of_macros; ++macro) by_path_.emplace(path(macro), macro);
  const auto put_all = [&](kv_named what, inside_t& inside) {
    const auto places = static_cast<std::size_t>(netlist.count(what)) + 1;
    inside.parent.resize(places);
    inside.next.resize(places);
    inside.first.resize(static_cast<std::size_t>(nb_of_macros) + 1);
    std::int32_t parent = 0;
    for (std::int32_t index = netlist.count(what); index > 0; --index) {
      parent = find_parent(netlist.path({what, index}), parent);
      inside.put(index, parent);
    }
  };
  put_all(kv_named::inst, insts_);
  put_all(kv_named::macro, macros_);
}

// Neighbours in the arrays mostly have one parent: that of the one before is looked at first.
template <typename Design>
std::int32_t kv_hierarchy_t<Design>::find_parent(std::string_view path, std::int32_t guess) const {
  const std::string_view before = this->path(guess);
  auto slash = path.rfind('/');
  if (slash == path.npos || (slash == before.size() && path.starts_with(before))) return guess;
  for (; slash != path.npos && slash > 0; slash = path.rfind('/', slash - 1)) {
    const auto at = by_path_.find(path.substr(0, slash));
    if (at != by_path_.end()) return at->second;
  }
  return 0;
}
