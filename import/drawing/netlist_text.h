// Lines of a SPICE netlist that stand as text in a drawing.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Nodes that a device has behind its name, told by its first letter; gxi_any_nodes for calls, all
// words of which but the last are nodes.
inline constexpr int gxi_any_nodes = 1000;
int gxi_spice_nodes(char letter);

struct gxi_netlist_device_t {
  std::string name{};
  std::vector<std::string> nodes{};
  std::string value{};  // what follows
};

// The devices among the lines; commands, comments and what stands between .control and .endc, or
// within .subckt and .ends, are none.
std::vector<gxi_netlist_device_t> gxi_netlist_devices(std::string_view text);
