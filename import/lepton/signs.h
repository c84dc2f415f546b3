// The symbols of components, and the properties of their instances.
#pragma once

#include "import/drawing/drawing.h"
#include "import/lepton/parts.h"

// The symbol of a component. Of a part, the pins have their numbers, and those that nobody drew
// are below; of a block they have their labels; otherwise there is the first one, P.
gxi_symbol_t gxi_lepton_sign(const gxi_lepton_placed_t& placed);
// What two components must share to have one symbol.
std::string gxi_lepton_sign_key(const gxi_lepton_placed_t& placed);
// The name of a block's pin.
std::string gxi_lepton_label(const gxi_lepton_pin_t& pin);

// The same on its page: attributes that are seen become looks, or texts of the sheet.
void gxi_lepton_dress(const gxi_lepton_placed_t& placed, gxi_instance_t& instance,
                      gxi_sheet_t& sheet);
// A text or attribute of the page itself.
void gxi_lepton_write(gxi_lepton_text_t text, gxi_lepton_point_t shift, gxi_sheet_t& sheet);

// CLASS of a part: the letters of its name.
std::string gxi_lepton_class(const gxi_lepton_placed_t& placed);
std::string_view gxi_lepton_port_class(const gxi_lepton_placed_t& placed);
