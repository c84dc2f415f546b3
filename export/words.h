// What several writers say of an object of a netlist.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "gx/text/at.h"
#include "kvi/load.h"

inline constexpr std::array<std::string_view, 5> kv_net_kind_words = {"local", "bus", "port",
                                                                      "child", "global"};
inline constexpr std::array<std::string_view, 5> kv_io_type_words = {"none", "in", "out", "in/out",
                                                                     "in/out"};
inline constexpr std::array<std::string_view, 4> kv_prop_type_words = {"string", "integer", "time",
                                                                       "real"};
template <std::size_t Count>
constexpr std::string_view kv_word(const std::array<std::string_view, Count>& words, int which) {
  return which >= 0 && which < static_cast<int>(Count) ? gx_at(words, which) : words.front();
}

// What a leaf is: the first of the kept texts MODEL, CELL, DEVICE, CLASS that it has; else "part".
inline std::string_view kv_device_of(const kvi_netlist_t& netlist, kv_object_t inst) {
  constexpr std::string_view names[] = {"MODEL", "CELL", "DEVICE", "CLASS"};
  for (const std::string_view name : names) {
    for (std::int32_t k = 0; k < netlist.nb_of_properties(inst); ++k) {
      if (netlist.property_name(inst.what, k) != name) continue;
      const kv_property_t property = netlist.property(inst, k);
      if (property.type == kv_prop_string && !property.text.empty()) return property.text;
    }
  }
  return "part";
}

// A path without its first "/", with `separator` for the others.
inline std::string kv_flat_name(std::string_view path, char separator) {
  if (path.starts_with('/')) path.remove_prefix(1);
  std::string name(path);
  std::ranges::replace(name, '/', separator);
  return name;
}

// Names that must differ: one that was given before gets "$2", "$3" ...
class kv_unique_t {
 public:
  std::string operator()(std::string name) {
    const int n = ++given_[name];
    return n == 1 ? name : (*this)(name + "$" + std::to_string(n));
  }

 private:
  std::unordered_map<std::string, int> given_;
};
