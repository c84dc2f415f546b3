// The names of an expanded design: every object by its path, a text as in netlist/path_key.h. The
// way back, from an object to its path, is kv_netlist_t::path.
//
//   const kv_path_index_t paths(netlist);
//   const std::string key = kv_path_key("/XR/X2/MP1");
//   for (const kv_object_t object : paths.find({&key, 1}, SIZE_MAX)) ...
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gx/text/at.h"
#include "netlist/netlist.h"
#include "netlist/path_key.h"

// Made once for a design, which must stay as it is; 8 to 12 bytes for each instance, macro, net
// and child. Pins are found by what they belong to, as most objects of a design are pins.
template <typename Design>
class kv_path_index_t {
 public:
  explicit kv_path_index_t(kv_netlist_t<Design> netlist);

  // The objects that have the path of the first of the keys that any has; at most `most`, in the
  // order of kv_named and of the index.
  std::vector<kv_object_t> find(std::span<const std::string> keys, std::size_t most) const;
  // The same for paths that begin with a key: looks at all but the pins of what cannot.
  std::vector<kv_object_t> find_beginning(std::span<const std::string> keys,
                                          std::size_t most) const;
  // Instances, macros and nets that have the key in their names (kv_path_has).
  std::vector<kv_object_t> find_containing(std::string_view key, std::size_t most) const;

  std::string_view path(kv_object_t object) const { return netlist_.path(object); }
  // The flat net that a child belongs to.
  std::int32_t net_of_child(std::int32_t child) const { return gx_at(net_of_child_, child); }

 private:
  // Those that are kept by their paths, in the order of kv_named, and those that have pins.
  static constexpr kv_named own_kinds[] = {kv_named::inst, kv_named::macro, kv_named::net,
                                           kv_named::net_child};
  static constexpr kv_named owner_kinds[] = {kv_named::inst, kv_named::macro};
  static constexpr std::size_t kinds = std::size(own_kinds);

  kv_object_t object_of(std::uint32_t number) const {
    const auto after = std::ranges::upper_bound(first_, number);
    const auto kind = static_cast<std::size_t>(after - first_.begin()) - 1;
    return {static_cast<kv_named>(kind), static_cast<std::int32_t>(number - first_[kind]) + 1};
  }
  bool has_path(kv_object_t object, std::string_view key) const {
    const std::string_view found = path(object);
    return found.size() == key.size() && kv_path_begins(found, key);
  }
  // Calls `visit` with each pin of an instance or macro.
  template <typename Visit>
  void each_pin(kv_object_t owner, Visit visit) const {
    if (owner.what != kv_named::inst && owner.what != kv_named::macro) return;
    const std::int32_t count = netlist_.nb_of_pins(owner);
    for (std::int32_t i = 0; i < count; ++i) {
      const kv_object_t pin = netlist_.pin(owner, i);
      if (pin.index != 0) visit(pin);
    }
  }
  void find_whole(std::string_view key, std::vector<kv_object_t>& found) const;
  std::vector<kv_object_t> find_key(std::string_view key, std::size_t most) const;

  kv_netlist_t<Design> netlist_;
  // Objects are numbered from 1 over the kinds: of each kind the number of its first.
  std::array<std::uint32_t, kinds + 1> first_{};
  // The last object with a hash, and for each object the one before it; 0: none. The hashes are
  // taken modulo the length, a power of two.
  std::vector<std::uint32_t> last_with_, before_;
  std::vector<std::int32_t> net_of_child_;
};

using kv_memory_paths_t = kv_path_index_t<kv_design_t>;

template <typename Design>
kv_path_index_t<Design>::kv_path_index_t(kv_netlist_t<Design> netlist) : netlist_(netlist) {
  std::uint32_t number = 1;
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    first_[kind] = number;
    number += static_cast<std::uint32_t>(netlist.count(own_kinds[kind]));
  }
  first_[kinds] = number;
  last_with_.resize(std::bit_ceil(number));
  before_.resize(number);
  const std::size_t mask = last_with_.size() - 1;
  number = 0;
  for (const kv_named kind : own_kinds) {
    const std::int32_t count = netlist.count(kind);
    for (std::int32_t index = 1; index <= count; ++index) {
      auto& last = last_with_[kv_hash_of(path({kind, index}), kv_path_folded) & mask];
      before_[++number] = last;
      last = number;
    }
  }
  net_of_child_.resize(static_cast<std::size_t>(netlist.count(kv_named::net_child)) + 1);
  const std::int32_t nets = netlist.count(kv_named::net);
  for (std::int32_t net = 1; net <= nets; ++net)
    for (const std::int32_t child : netlist.children(net)) gx_at(net_of_child_, child) = net;
}

template <typename Design>
void kv_path_index_t<Design>::find_whole(std::string_view key,
                                         std::vector<kv_object_t>& found) const {
  const std::size_t at = kv_hash_of(key, kv_path_folded) & (last_with_.size() - 1);
  for (std::uint32_t number = last_with_[at]; number != 0; number = before_[number]) {
    const kv_object_t object = object_of(number);
    if (has_path(object, key)) found.push_back(object);
  }
}

// Names may hold a "/" themselves, so whatever ends before one may have the pin.
template <typename Design>
std::vector<kv_object_t> kv_path_index_t<Design>::find_key(std::string_view key,
                                                           std::size_t most) const {
  std::vector<kv_object_t> found, owners;
  find_whole(key, found);
  for (auto slash = key.find('/', 1); slash != key.npos; slash = key.find('/', slash + 1))
    find_whole(key.substr(0, slash), owners);
  for (const kv_object_t owner : owners) {
    each_pin(owner, [&](kv_object_t pin) {
      if (has_path(pin, key)) found.push_back(pin);
    });
  }
  std::ranges::sort(found);
  if (found.size() > most) found.resize(most);
  return found;
}

template <typename Design>
std::vector<kv_object_t> kv_path_index_t<Design>::find(std::span<const std::string> keys,
                                                       std::size_t most) const {
  for (const auto& key : keys) {
    auto found = find_key(key, most);
    if (!found.empty()) return found;
  }
  return {};
}

template <typename Design>
std::vector<kv_object_t> kv_path_index_t<Design>::find_beginning(std::span<const std::string> keys,
                                                                 std::size_t most) const {
  if (keys.empty()) return {};
  std::vector<std::vector<kv_object_t>> found(keys.size());
  const auto take = [&](kv_object_t object) {
    const std::string_view of = path(object);
    for (std::size_t i = 0; i < keys.size(); ++i)
      if (found[i].size() < most && kv_path_begins(of, keys[i])) found[i].push_back(object);
  };
  // Only where one of the two begins with the other can pins be met.
  const auto take_pins = [&](kv_object_t owner) {
    const std::string_view of = path(owner);
    const bool may_have = std::ranges::any_of(keys, [&](std::string_view key) {
      const std::size_t common = std::min(key.size(), of.size());
      return kv_path_begins(of.substr(0, common), key.substr(0, common));
    });
    if (may_have) each_pin(owner, take);
  };
  const auto each = [&](kv_named what, const auto& visit) {
    const std::int32_t count = netlist_.count(what);
    for (std::int32_t index = 1; index <= count && found.front().size() < most; ++index)
      visit(kv_object_t{what, index});
  };
  for (const kv_named what : own_kinds) each(what, take);
  for (const kv_named what : owner_kinds) each(what, take_pins);
  const auto first =
      std::ranges::find_if(found, [](const auto& of_key) { return !of_key.empty(); });
  return first == found.end() ? std::vector<kv_object_t>{} : std::move(*first);
}

template <typename Design>
std::vector<kv_object_t> kv_path_index_t<Design>::find_containing(std::string_view key,
                                                                  std::size_t most) const {
  std::vector<kv_object_t> found;
  for (const kv_named what : own_kinds)
    for (std::int32_t index = 1; index <= netlist_.count(what) && found.size() < most; ++index)
      if (kv_path_has(path({what, index}), key)) found.push_back({what, index});
  return found;
}
