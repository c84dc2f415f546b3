// Symbols of xschem, and how their instances look.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/xschem/picture.h"
#include "import/xschem/placed.h"

// The symbol; of a device with the pins in the order of that line of its netlist, those without a
// place in a row below; of a label or port with the one pin, P. Only the first line is drawn.
gxi_symbol_t gxi_xschem_sign(const gxi_xschem_placed_t& placed, std::size_t line);
// CLASS of a device without a sheet; PORTIN, PORTOUT or PORTIO of a port.
std::string gxi_xschem_class(const gxi_xschem_symbol_t& symbol);
std::string gxi_xschem_port_class(const gxi_xschem_symbol_t& symbol);

// Gives the instance of a device its properties, hidden, and shows its name. What is seen of them
// is in the list that is returned, which the first instance of a vector takes; what is meant for
// all of a vector is written on the sheet.
std::vector<gxi_property_t> gxi_xschem_dress(const gxi_xschem_placed_t& placed, std::size_t line,
                                             bool is_leaf,
                                             const std::vector<gxi_xschem_shown_t>& shown,
                                             gxi_instance_t& instance, gxi_sheet_t& sheet);
// Draws a component that is no instance.
void gxi_xschem_draw(const gxi_xschem_placed_t& placed,
                     const std::vector<gxi_xschem_shown_t>& shown, const gxi_instance_t& instance,
                     gxi_sheet_t& sheet);
