// A deck for SPICE of an expanded design.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "deck/deck_file.h"
#include "kvi/load.h"

// A value that is kept of the devices with one of these letters: gm of M and J.
struct dk_saved_t {
  std::string letters{}, name{};
};

struct dk_options_t {
  std::string_view title{};
  bool hierarchy = false;                    // a subcircuit for each cell
  bool lvs = false;                          // to be compared with a layout: devices, no analyses
  bool global_ports = false;                 // globals are ports of the primary sheet, not .global
  std::vector<dk_saved_t> saved{};           // values that the simulator is to keep
  std::vector<std::string_view> includes{};  // files that are included at the end
};

struct dk_output_t {
  std::function<void(std::string_view)> line;        // one line without its end
  std::function<void(const std::string&)> complain;  // what was left out, or made otherwise
};

// False when an instance had to be left out, which is complained of.
bool dk_write_deck(kvi_netlist_t netlist, const dk_cells_t& cells, const dk_options_t& options,
                   const dk_output_t& output);
