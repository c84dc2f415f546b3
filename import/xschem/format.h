// The lines of a netlist that an instance of xschem becomes by its format: which nodes each has,
// and what it says of the device.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "import/xschem/symbols.h"

// A node of a line: a pin of the symbol, or a net that a text names.
struct gxi_xschem_node_t {
  int pin = -1;
  std::size_t width = 0;  // the bits of the pin where its name does not say; 0: as its name says
  std::string name{};     // of the node without a pin: its attribute, or N3 for the third node
  std::string label{};    // of the net
};

// A word of a line: text, in which "@name" is the name of the instance and "\1" and a pin's number
// and "\2" that pin, or one node.
struct gxi_xschem_word_t {
  std::string text{};
  int pin = -1;
  int node = -1;  // of the device's nodes, where it is no pin
};

struct gxi_xschem_device_t {
  char letter = 'X';  // its kind in a netlist, in capitals
  // Before the name of the instance, as "MA" in "#MA#@name"; of one line alone it is not kept.
  std::string prefix{};
  std::vector<gxi_xschem_node_t> nodes{};
  // The model, cell or value where no attribute alone gives it: "sky130_fd_pr__nfet" of
  // "sky130_fd_pr__@model".
  std::string model{};
  // Parameters that are more than an attribute of their name.
  std::vector<std::pair<std::string, std::string>> parameters{};
  // Attributes that name nodes, or are a part of the name of the device or its model.
  std::vector<std::string> used_up{};
  std::vector<std::string> named{};  // other attributes that the line has
  std::vector<gxi_xschem_word_t> line{};
};

// The lines of a format that are commands, as words.
std::vector<std::vector<gxi_xschem_word_t>> gxi_xschem_commands(
    std::string_view format, const gxi_xschem_symbol_t& symbol,
    const std::function<std::string(std::string_view)>& value);

// `value` gives an attribute of the instance. Lines that are commands or comments are no devices.
std::vector<gxi_xschem_device_t> gxi_xschem_devices(
    std::string_view format, const gxi_xschem_symbol_t& symbol,
    const std::function<std::string(std::string_view)>& value);
