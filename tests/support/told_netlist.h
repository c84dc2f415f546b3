// A netlist as lines of text, an object each: to be compared whole.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "netlist/netlist.h"

// The objects of a kind; what is 0 or empty is left out, and without `ids` what depends on the
// numbers of objects on their sheets.
template <typename Design>
std::vector<std::string> told_objects(const kv_netlist_t<Design>& netlist, kv_named what,
                                      bool ids = false) {
  constexpr const char* kinds[] = {"inst", "macro", "net", "child", "pin", "macro pin"};
  std::vector<std::string> lines;
  for (std::int32_t i = 1; i <= netlist.count(what); ++i) {
    const kv_object_t of{what, i};
    std::ostringstream line;
    const auto put = [&line](const char* name, auto value) {
      if (value != decltype(value){}) line << ' ' << name << ' ' << value;
    };
    line << kinds[static_cast<int>(what)] << ' ' << i << ' ' << netlist.path(of);
    if (ids) put("id", netlist.object_id(of));
    if (what == kv_named::inst || what == kv_named::macro) {
      put("on", netlist.file_path(of));
      put("timing", +netlist.timing_index(of));
      put("pins", netlist.nb_of_pins(of));
      if (netlist.nb_of_pins(of) > 0) put("from", netlist.pin(of, 0).index);
    } else if (what == kv_named::net_child) {
      put("name", netlist.child_name(i));
      put("kind", netlist.child_kind(i));
    } else if (what == kv_named::net) {
      put("name", netlist.name(i));
      put("kind", netlist.net_kind(i));
      put("type", netlist.net_type(i) - kv_net_standard);
      if (netlist.is_bus(i)) line << ' ' << netlist.bus_start(i) << ':' << netlist.bus_end(i);
      put("members", netlist.first_member(i));
      put("bit", netlist.bus(i) == 0 ? std::string() : std::to_string(netlist.bit(i)));
      put("of", netlist.bus(i));
      if (netlist.bus(i) != 0 &&
          netlist.object_id(of) != netlist.object_id({kv_named::net, netlist.bus(i)}))
        line << " with another id";
      put("named", netlist.first_named(i));
      put("next", netlist.next_named(i));
      put("father", netlist.father(i));
      put("state", +netlist.initial_state(i));
      put("in", netlist.nb_of_pins_in(i));
      for (const std::int32_t pin : netlist.pins_in(i))
        line << ' ' << netlist.path({kv_named::pin, pin});
      put("out", netlist.nb_of_pins_out(i));
      for (const std::int32_t pin : netlist.pins_out(i))
        line << ' ' << netlist.path({kv_named::pin, pin});
      for (const std::int32_t child : netlist.children(i))
        line << " + " << netlist.path({kv_named::net_child, child}) << ' '
             << netlist.child_kind(child);
    } else {
      const kv_bits_t bits = netlist.bits(of);
      put("of", netlist.owner(of).index);
      put("type", netlist.io_type(of));
      put("net", netlist.net(of));
      put("from", bits.at - netlist.net(of));
      put("bits", bits.count - 1);
    }
    for (std::int32_t k = 0; k < netlist.nb_of_properties(of); ++k) {
      const kv_property_t property = netlist.property(of, k);
      line << ' ' << property.name << '=' << property.text;
      if (property.type == kv_prop_string) continue;
      for (int which = 0; which < 3; ++which)
        line << (which > 0 ? "," : "") << netlist.value(property, which);
    }
    lines.push_back(line.str());
  }
  return lines;
}
