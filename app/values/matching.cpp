#include "app/values/matching.h"

#include <algorithm>
#include <unordered_map>

#include "gx/text/strings.h"

namespace {

using names_t = std::span<const std::string_view>;

class matcher_t {
 public:
  explicit matcher_t(const kv_expanded_t& expanded) : expanded_(expanded) {
    const auto& netlist = expanded.netlist;
    for (std::int32_t macro = 1; macro <= netlist.count(kv_named::macro); ++macro) {
      const std::string_view path = netlist.path({kv_named::macro, macro});
      if (path.find('/', 1) != path.npos || path.size() < 2) continue;
      const char letter = gx_upper_case(path[1]);
      if (first_letters_.find(letter) == first_letters_.npos) first_letters_ += letter;
    }
  }

  // The flat net that a path of a simulator means; 0 when there is none.
  std::int32_t net(std::string_view path) {
    if (const auto whole = net_with("/" + kv_path_key(path)); whole != 0) return whole;
    const auto names = names_of(path);
    if (const auto found = net_of(names); found != 0) return found;
    return has_letter(names) ? net_of(names_t(names).subspan(1)) : 0;
  }

  // The leaf instance that a path means or begins with; what follows is left in `rest`.
  std::int32_t device(std::string_view path, std::string& rest) {
    const auto names = names_of(path);
    if (has_letter(names)) {
      const char letter = gx_upper_case(names[0].front());
      if (const auto found = device_of(names_t(names).subspan(1), letter, rest); found != 0) {
        return found;
      }
    }
    return device_of(names, 0, rest);
  }

 private:
  // Not more than any design has levels.
  static std::vector<std::string_view> names_of(std::string_view path) {
    constexpr std::size_t most = 64;
    auto names = rs_path_names(path);
    if (names.size() > most) names.resize(most);
    return names;
  }
  // "m.xr.x2.mp1": a letter before the names.
  static bool has_letter(names_t names) { return names.size() > 1 && names[0].size() == 1; }

  std::int32_t net_with(const std::string& key) const {
    for (const auto object : expanded_.paths.find({&key, 1}, SIZE_MAX)) {
      if (object.what == kv_named::net) return object.index;
      if (object.what == kv_named::net_child) return expanded_.paths.net_of_child(object.index);
    }
    return 0;
  }
  std::int32_t inst_with(const std::string& key) const {
    for (const auto object : expanded_.paths.find({&key, 1}, SIZE_MAX)) {
      if (object.what == kv_named::inst) return object.index;
    }
    return 0;
  }
  bool is_block(const std::string& key) const {
    for (const auto object : expanded_.paths.find({&key, 1}, SIZE_MAX)) {
      if (object.what == kv_named::macro) return true;
    }
    return false;
  }

  std::int32_t net_of(names_t names) {
    if (names.empty()) return 0;
    for (const auto& block : blocks(names.first(names.size() - 1))) {
      if (const auto net = net_with(block + "/" + gx_upper(names.back())); net != 0) return net;
    }
    return 0;
  }

  // The longest part first. `letter` is that of the device when it is before the path.
  std::int32_t device_of(names_t names, char letter, std::string& rest) {
    for (std::size_t length = names.size(); length > 0; --length) {
      const std::string last = gx_upper(names[length - 1]);
      for (const auto& block : blocks(names.first(length - 1))) {
        std::string key = block + "/" + last;
        std::int32_t inst = inst_with(key);
        if (inst == 0 && last.starts_with('X')) {
          inst = inst_with(key = block + "/" + last.substr(1));
        }
        if (inst == 0 && letter != 0) inst = inst_with(key = block + "/" + letter + last);
        if (inst == 0) continue;
        if (length < names.size()) inst = in_slot(inst, key, names[length]);
        if (inst == 0) return 0;
        rest.clear();
        for (const auto name : names.subspan(length)) {
          rest.append(rest.empty() ? "" : ".").append(name);
        }
        return inst;
      }
    }
    return 0;
  }

  // "q1.2": of the parts of a package, Q1, Q1~2 ..., the one in slot 2; 0 when none of them is.
  std::int32_t in_slot(std::int32_t inst, const std::string& key, std::string_view slot) const {
    if (slot.find_first_not_of("0123456789") != slot.npos) return inst;
    std::int32_t part = inst;
    for (int k = 2; part != 0; ++k) {
      if (slot_of(part) == slot) return part;
      part = inst_with(key + "~" + std::to_string(k));
      if (part == 0 && k == 2) return inst;  // no package
    }
    return 0;
  }
  std::string_view slot_of(std::int32_t inst) const {
    const kv_object_t object{kv_named::inst, inst};
    const auto& netlist = expanded_.netlist;
    for (std::int32_t k = 0; k < netlist.nb_of_properties(object); ++k) {
      if (netlist.property_name(kv_named::inst, k) == "slot")
        return netlist.property(object, k).text;
    }
    return {};
  }

  // The keys of the blocks that names may mean, the plainest first; "" is the top. Kept, as many
  // names of a file begin alike.
  const std::vector<std::string>& blocks(names_t names) {
    std::string key;
    for (const auto name : names) key.append("/").append(gx_upper(name));
    const auto [at, is_new] = blocks_.try_emplace(key);
    if (!is_new) return at->second;
    std::vector<std::string> found;
    if (names.empty()) {
      found.emplace_back();
    } else {
      const std::string last = gx_upper(names.back());
      // A reference into the map stays good while others are added.
      for (const auto& above : blocks(names.first(names.size() - 1))) add_block(above, last, found);
    }
    return blocks_[key] = std::move(found);
  }
  void add_block(const std::string& above, const std::string& name,
                 std::vector<std::string>& found) const {
    constexpr std::size_t most = 4;
    const auto add = [&](const std::string& key) {
      if (found.size() < most && is_block(key)) found.push_back(key);
    };
    add(above + "/" + name);
    if (name.starts_with('X')) add(above + "/" + name.substr(1));
    if (!above.empty()) return;
    for (const char letter : first_letters_) add(std::string("/") + letter + name);
  }

  const kv_expanded_t& expanded_;
  std::string first_letters_;  // of the blocks at the top
  std::unordered_map<std::string, std::vector<std::string>> blocks_;
};

bool is_ground(std::string_view name) {
  return name == "0" || gx_iden(name, "GND") || gx_iden(name, "GROUND");
}

// Nets of one global are one node of the simulator, and ground is in no file.
void add_globals(const kv_memory_netlist_t& netlist, std::vector<kv_matches_t::net_t>& nets) {
  std::unordered_map<std::string, kv_variable_t> by_name;
  std::vector<bool> is_met(static_cast<std::size_t>(netlist.count(kv_named::net)) + 1);
  for (const auto& [net, variable] : nets) {
    gx_at(is_met, net) = true;
    if (netlist.net_kind(net) == kv_kind_global) {
      by_name.emplace(gx_upper(netlist.name(net)), variable);
    }
  }
  for (std::int32_t net = 1; net <= netlist.count(kv_named::net); ++net) {
    if (gx_at(is_met, net)) continue;
    if (netlist.net_kind(net) == kv_kind_global) {
      const auto met = by_name.find(gx_upper(netlist.name(net)));
      if (met != by_name.end()) {
        nets.push_back({net, met->second});
        continue;
      }
      if (is_ground(netlist.name(net))) nets.push_back({net, kv_ground});
    } else if (std::string_view path = netlist.path({kv_named::net, net});
               path.starts_with('/') && is_ground(path.substr(1))) {
      nets.push_back({net, kv_ground});
    }
  }
}

// "gm" of the device itself, "m0.gm" of what is inside it, "d" of what only the path says.
std::string parameter_of(const rs_name_t& name, std::string rest) {
  std::ranges::transform(rest, rest.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  // What a process kit puts into the device is one transistor in all.
  if (!name.parameter.empty()) return name.parameter;
  return rest;
}

}  // namespace

const kv_variable_t* kv_matches_t::of_net(std::int32_t net) const {
  const auto at = std::ranges::lower_bound(nets, net, {}, &net_t::net);
  return at != nets.end() && at->net == net ? &at->variable : nullptr;
}

std::span<const kv_device_value_t> kv_matches_t::of_device(std::int32_t inst) const {
  const auto first = std::ranges::lower_bound(devices, inst, {}, &kv_device_value_t::inst);
  const auto end = std::ranges::upper_bound(devices, inst, {}, &kv_device_value_t::inst);
  return {first, end};
}

kv_matches_t kv_match(const kv_expanded_t& expanded, std::span<const rs_variable_t> variables) {
  kv_matches_t matches;
  matcher_t matcher(expanded);
  for (kv_variable_t i = 0; i < variables.size(); ++i) {
    const rs_name_t name = rs_read_name(variables[i]);
    if (name.meaning == rs_meaning::other) continue;
    if (name.meaning == rs_meaning::net) {
      if (const auto net = matcher.net(name.path); net != 0) {
        matches.nets.push_back({net, i});
        ++matches.of_nets;
        continue;
      }
    }
    // A net inside a device, too, belongs to it.
    std::string rest;
    if (const auto inst = matcher.device(name.path, rest); inst != 0) {
      if (name.meaning == rs_meaning::net && rest.empty()) {
        matches.idle.push_back(i);
        continue;
      }
      ++matches.of_devices;
      const bool is_inner = name.meaning == rs_meaning::net;
      matches.devices.push_back({inst, i, is_inner ? "v(" + rest + ")" : parameter_of(name, rest)});
    } else {
      matches.idle.push_back(i);
    }
  }
  add_globals(expanded.netlist, matches.nets);
  std::ranges::stable_sort(matches.nets, {}, &kv_matches_t::net_t::net);
  const auto is_same = [](const auto& a, const auto& b) { return a.net == b.net; };
  matches.nets.erase(std::unique(matches.nets.begin(), matches.nets.end(), is_same),
                     matches.nets.end());
  std::ranges::stable_sort(matches.devices, {}, &kv_device_value_t::inst);
  return matches;
}
