// A component of a sheet as a netlist sees it: its symbol, its attributes, the lines it becomes.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "import/xschem/format.h"

struct gxi_xschem_placed_t {
  const gxi_xschem_component_t* component = nullptr;
  const gxi_xschem_symbol_t* symbol = nullptr;
  gxi_xschem_role_t role = gxi_xschem_role_t::picture;
  std::string_view file{};                      // the sheet's
  const gxi_xschem_placed_t* within = nullptr;  // that the sheet was first below; null: the top
  gxi_xschem_attributes_t attributes{};
  std::vector<std::string> names{};  // of a device: one for each instance of a vector
  bool ignored = false;              // takes no part in nets
  bool shorted = false;              // joins all its pins
  std::vector<gx_pointreal_t> pins{};
  // Of a device, one for each line of its format, at least one. Pins that no line has are the last
  // nodes of the first.
  std::vector<gxi_xschem_device_t> devices{};

  std::vector<std::vector<gxi_xschem_word_t>> commands{};  // lines of its format that are none

  // The attribute itself, else the default of the symbol.
  std::string_view value(std::string_view name) const;
  gxm_source_t source() const { return {file, component->line}; }
};

// `within`: what the sheet is first below; null on the sheet that the design begins with. What Tcl
// would decide is reported.
gxi_xschem_placed_t gxi_xschem_place(const gxi_xschem_component_t& component,
                                     const gxi_xschem_symbol_t& symbol, std::string_view file,
                                     bool is_top, const gxi_xschem_placed_t* within,
                                     gxm_messages_t& messages);

// The nodes in the order of the subcircuit of the symbol's name, where the text has it with the
// same ports.
void gxi_xschem_order_nodes(gxi_xschem_placed_t& placed, std::string_view netlist);

// The names of the pins of a node.
std::vector<std::string> gxi_xschem_pin_names(const gxi_xschem_placed_t& placed,
                                              const gxi_xschem_node_t& node);

// What "@name" stands for in a text of the symbol or in its format.
std::string gxi_xschem_value(const gxi_xschem_placed_t& placed, std::string_view name);

// The same with what stands for "@NAME" in it; where only the block around has an attribute of the
// name, it is a parameter and stays as a name. "expr(...)" is worked out, or put in quotes.
std::string gxi_xschem_whole_value(const gxi_xschem_placed_t& placed, std::string_view name);

// Attributes of the block around the sheet that those of the component, or the text, refer to.
std::set<std::string> gxi_xschem_parameters_of(const gxi_xschem_placed_t& placed);

// The place, mirror and turn of a component.
gxi_instance_t gxi_xschem_instance(const gxi_xschem_component_t& component, std::string_view file);
