// A design as it is compared: its blocks, its leaf instances with their values and the nets that
// their pins are on. Plain records; texts are views into the design that they were read from.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "gx/text/at.h"
#include "netlist/hierarchy.h"

struct kv_compared_block_t {
  std::string_view path, name;  // name: the end of its path, on the sheet of its parent
  std::int32_t parent = 0;      // its place among the blocks; parents need not come first
};

struct kv_compared_value_t {
  std::string_view name;
  std::string text;        // never ""
  bool is_number = false;  // kept as one: 0 stands for none, too
};

// A pin, or a bit of a wide one.
struct kv_compared_terminal_t {
  std::string_view pin;
  std::int32_t bit = -1;  // 0.. of a pin of several bits
  std::int32_t net = 0;   // its place among the nets; 0: none
  friend bool operator==(const kv_compared_terminal_t&, const kv_compared_terminal_t&) = default;
};

struct kv_compared_instance_t {
  std::string_view path, name;
  std::int32_t block = 0;
  std::size_t first_value = 0, after_values = 0;        // ascending by name
  std::size_t first_terminal = 0, after_terminals = 0;  // ascending by pin and bit
};

struct kv_compared_net_t {
  std::string_view path, name;
  std::int32_t block = 0;
};

struct kv_compared_design_t {
  std::vector<kv_compared_block_t> blocks{1};  // 0: the primary sheet
  std::vector<kv_compared_instance_t> instances;
  std::vector<kv_compared_value_t> values;
  std::vector<kv_compared_terminal_t> terminals;
  std::vector<kv_compared_net_t> nets{1};  // 0: none
};

// Brings the values and terminals of an instance, the last that were added, into their order.
inline void kv_order_last(kv_compared_design_t& design, kv_compared_instance_t& inst) {
  inst.after_values = design.values.size();
  inst.after_terminals = design.terminals.size();
  std::ranges::stable_sort(design.values.begin() + static_cast<std::ptrdiff_t>(inst.first_value),
                           design.values.end(), {}, &kv_compared_value_t::name);
  std::ranges::stable_sort(
      design.terminals.begin() + static_cast<std::ptrdiff_t>(inst.first_terminal),
      design.terminals.end(), {},
      [](const kv_compared_terminal_t& terminal) { return std::tie(terminal.pin, terminal.bit); });
}

// The text of a property: of numbers the least, the typical and the greatest, once when they are
// one; times in seconds.
template <typename Netlist>
std::string kv_compared_text(const Netlist& netlist, const kv_property_t& property) {
  if (property.type == kv_prop_string) return std::string(property.text);
  const auto number = [&](int which) {
    char digits[40];
    const auto value = static_cast<float>(netlist.value(property, which));
    return std::string(digits, std::to_chars(digits, digits + 40, value).ptr);
  };
  // Integers of more digits than a float holds are kept whole.
  const auto one = [&](int which) {
    return property.type == kv_prop_int ? std::to_string(gx_at(property.whole, which))
                                        : number(which);
  };
  std::string text = one(0);
  if (one(1) != text || one(2) != text) text += ", " + one(1) + ", " + one(2);
  return text;
}

template <typename Design>
kv_compared_design_t kv_compared(kv_netlist_t<Design> netlist) {
  const kv_hierarchy_t<Design> hierarchy(netlist);
  kv_compared_design_t design;
  for (std::int32_t i = 1; i <= netlist.count(kv_named::macro); ++i) {
    const kv_object_t block{kv_named::macro, i};
    design.blocks.push_back({netlist.path(block), hierarchy.name(block), hierarchy.parent(block)});
  }
  const auto name_in = [&](std::string_view path, std::int32_t block) {
    const std::size_t before = gx_at(design.blocks, block).path.size() + 1;
    return path.substr(std::min(before, path.size()));
  };
  for (std::int32_t i = 1; i <= netlist.count(kv_named::net); ++i) {
    const std::string_view path = netlist.path({kv_named::net, i});
    const std::int32_t block = hierarchy.block_of(path);
    design.nets.push_back({path, name_in(path, block), block});
  }
  for (std::int32_t i = 1; i <= netlist.count(kv_named::inst); ++i) {
    const kv_object_t inst{kv_named::inst, i};
    kv_compared_instance_t compared{
        .path = netlist.path(inst),
        .name = hierarchy.name(inst),
        .block = hierarchy.parent(inst),
        .first_value = design.values.size(),
        .first_terminal = design.terminals.size(),
    };
    for (std::int32_t k = 0; k < netlist.nb_of_properties(inst); ++k) {
      const kv_property_t property = netlist.property(inst, k);
      std::string text = kv_compared_text(netlist, property);
      if (!text.empty())
        design.values.push_back({property.name, std::move(text), property.type != kv_prop_string});
    }
    for (std::int32_t k = 0; k < netlist.nb_of_pins(inst); ++k) {
      const kv_object_t pin = netlist.pin(inst, k);
      const kv_bits_t bits = netlist.bits(pin);
      for (std::int32_t bit = 0; bit < bits.count; ++bit)
        design.terminals.push_back(
            {netlist.pin_name(pin), bits.count > 1 ? bit : -1, bits.net(bit)});
    }
    kv_order_last(design, compared);
    design.instances.push_back(compared);
  }
  return design;
}
