// Lines of a SPICE netlist that stand as text in a drawing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Nodes that a device has after its name, by its first letter; gxi_any_nodes for calls, all words
// of which but the last are nodes.
inline constexpr int gxi_any_nodes = 1000;
int gxi_spice_nodes(char letter);

// Whether a word that may be a node is one: no bracket, port type (%vd) or value.
bool gxi_is_node(std::string_view word);
// Whether a word begins the values of a controlled source: TABLE, POLY(2), {V(a)} ...
bool gxi_begins_value(std::string_view word);

// The ports of the subcircuit of that name, letter case ignored; none when there is no such.
std::vector<std::string> gxi_netlist_ports(std::string_view text, std::string_view subcircuit);

struct gxi_netlist_device_t {
  std::string name{};
  std::vector<std::string> nodes{};
  std::string value{};  // what follows
  std::string line{};   // as it is in the text, with places for the nodes (deck/deck_file.h)
};

// The devices among the lines; commands, comments and what stands between .control and .endc, or
// within .subckt and .ends, are none.
// The other lines are added to `rest`.
std::vector<gxi_netlist_device_t> gxi_netlist_devices(std::string_view text,
                                                      std::string* rest = nullptr);
