// How the graphics and texts of KiCad look here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/colors.h"
#include "import/drawing/drawing.h"
#include "import/kicad/records.h"

// The usual step of wires, 1.27 mm, is one grid step. On a sheet y goes down as here; in a symbol
// it goes up.
gx_pointreal_t gxi_kicad_on_sheet(gxi_kicad_point_t p);
gx_pointreal_t gxi_kicad_in_symbol(gxi_kicad_point_t p);
std::int32_t gxi_kicad_length(int length);

// Shapes that KiCad fills with the body's pale colour are drawn as outlines; wide outlines as
// lines.
std::vector<gxm_shape_t> gxi_kicad_drawn(const gxi_kicad_shape_t& shape, bool in_symbol,
                                         std::uint8_t color);

// The look of a text, as if nothing turned it but its own turns.
gxi_look_t gxi_kicad_look(const gxi_kicad_text_t& text, bool in_symbol, std::uint8_t color);
// The text of a label of a sheet, which starts at its place and goes away from it.
gxi_look_t gxi_kicad_label_look(const gxi_kicad_label_t& label);

// A text as it is read: bars, scripts and escapes taken out.
std::string gxi_kicad_readable(std::string_view text);
// Draws a text, with lines above what has a bar.
void gxi_kicad_write(std::string_view text, const gxi_look_t& look, std::vector<gxi_text_t>& texts,
                     std::vector<gxm_shape_t>& shapes);
// The outline of a global or hierarchical label around its text.
gxm_shape_t gxi_kicad_flag(const gxi_kicad_label_t& label, std::size_t length);
