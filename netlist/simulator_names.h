// The names that SPICE gets: "0" for the net GROUND, "N" for /N, "1:N3" for /X1/N3 (the first
// letter of the top instance, which is the letter of the device, is left out).
//
//   const kv_simulator_names_t names(netlist);
//   names.of(net);            // a node of its own for every net that is no bus
//   kv_simulator_name(path);  // a path alone: of a pin, of an instance
//
// The netlist that kvspice writes and the requests that GIVE sends have their names from here.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "gx/text/at.h"
#include "netlist/netlist.h"
#include "netlist/path_key.h"

inline bool kv_is_ground(std::string_view path) {
  return path.size() == 7 && kv_path_key(path) == "/GROUND";
}

// The part of a path that makes its name, "/" for ":"; all of it after its first "/" where the
// first letter cannot be left out.
inline std::string_view kv_simulator_part(std::string_view path, bool whole = false) {
  if (!path.starts_with('/')) return path;
  const auto second = path.find('/', 1);
  return path.substr(whole || second == path.npos || second == 2 ? 1 : 2);
}
inline std::string kv_simulator_name(std::string_view path, bool whole = false) {
  if (kv_is_ground(path)) return "0";
  std::string name(kv_simulator_part(path, whole));
  if (path.starts_with('/')) std::ranges::replace(name, '/', ':');
  return name;
}

// The nodes of a design and their names; made once for a design, which must stay as it is. 5 bytes
// a net, and 12 more while it is made.
//
// Nets of one global, whose names are the same but for the case of letters, are one node: that of
// the net at the top that has its name, or else of the first one. No two nodes have one name in
// either case of letters: where leaving the first letter out would give two the same, both have
// their whole paths ("X1:N3"); what is the same even so gets its number ("N::17").
template <typename Design>
class kv_simulator_names_t {
 public:
  explicit kv_simulator_names_t(kv_netlist_t<Design> netlist)
      : netlist_(netlist),
        node_(static_cast<std::size_t>(netlist.count(kv_named::net)) + 1),
        form_(node_.size(), form_t::plain) {
    join_globals();
    while (take_apart()) {
    }
  }

  // The net that gives the node of a net its name, 1..count.
  std::int32_t node(std::int32_t net) const { return gx_at(node_, net); }
  // The name of its node.
  std::string of(std::int32_t net) const {
    const std::int32_t named = node(net);
    const form_t form = gx_at(form_, named);
    std::string name = kv_simulator_name(path(named), form != form_t::plain);
    if (form == form_t::numbered) name += "::" + std::to_string(named);
    return name;
  }

 private:
  enum class form_t : std::uint8_t { plain, whole, numbered };

  static char folded(char c) {
    return c == '/' ? ':' : c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  std::string_view path(std::int32_t net) const { return netlist_.path({kv_named::net, net}); }
  std::string_view part(std::int32_t net) const {
    return kv_is_ground(path(net))
               ? "0"
               : kv_simulator_part(path(net), gx_at(form_, net) != form_t::plain);
  }

  void join_globals();
  bool take_apart();

  kv_netlist_t<Design> netlist_;
  std::vector<std::int32_t> node_;
  std::vector<form_t> form_;
};

template <typename Design>
void kv_simulator_names_t<Design>::join_globals() {
  struct global_t {
    std::int32_t net;
    bool at_top;
  };
  const auto upper = [](std::string_view text) {
    std::string letters(text);
    std::ranges::transform(letters, letters.begin(), folded);
    return letters;
  };
  std::unordered_map<std::string, global_t> globals;
  std::vector<std::int32_t> nets;
  for (std::int32_t net = 1; net <= netlist_.count(kv_named::net); ++net) {
    gx_at(node_, net) = net;
    if (netlist_.net_kind(net) != kv_kind_global || netlist_.name(net).empty()) continue;
    const std::string name = upper(netlist_.name(net));
    const bool at_top = upper(path(net)) == ":" + name;
    global_t& global = globals.try_emplace(name, global_t{net, at_top}).first->second;
    if (at_top && !global.at_top) global = {net, true};
    nets.push_back(net);
  }
  for (const std::int32_t net : nets) gx_at(node_, net) = globals.at(upper(netlist_.name(net))).net;
}

// Changes the names of all nodes that have the same one; false when there are none.
template <typename Design>
bool kv_simulator_names_t<Design>::take_apart() {
  std::vector<std::int32_t> last_with(std::bit_ceil(node_.size())), before(node_.size());
  std::vector<std::pair<std::int32_t, std::int32_t>> same;
  for (std::int32_t net = 1; net <= netlist_.count(kv_named::net); ++net) {
    if (node(net) != net || netlist_.is_bus(net) || gx_at(form_, net) == form_t::numbered) continue;
    const std::string_view name = part(net);
    auto& last = gx_at(last_with, kv_hash_of(name, folded) & (last_with.size() - 1));
    for (std::int32_t other = last; other != 0; other = gx_at(before, other)) {
      if (!std::ranges::equal(name, part(other), {}, folded, folded)) continue;
      same.emplace_back(net, other);
      break;
    }
    gx_at(before, net) = std::exchange(last, net);
  }
  // First all that can have their whole paths, so that the order of the nets does not count.
  bool any_plain = false;
  for (const auto& [net, other] : same) {
    for (const std::int32_t each : {net, other}) {
      form_t& form = gx_at(form_, each);
      any_plain = any_plain || form == form_t::plain;
      if (form == form_t::plain) form = form_t::whole;
    }
  }
  if (!any_plain)
    for (const auto& [net, other] : same)
      gx_at(form_, kv_is_ground(path(net)) ? other : net) = form_t::numbered;
  return !same.empty();
}
