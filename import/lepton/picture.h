// How the graphics and texts of Lepton EDA look here.
#pragma once

#include <string>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/lepton/file.h"

// 100 thousandths of an inch, the usual step, are one grid step; y turns over.
gx_pointreal_t gxi_lepton_point(gxi_lepton_point_t p);

// The nearest of the eight colours.
std::uint8_t gxi_lepton_color(int index);

// What is drawn of a shape.
std::vector<gxm_shape_t> gxi_lepton_shapes(const gxi_lepton_shape_t& shape);
gxm_shape_t gxi_lepton_pin_line(const gxi_lepton_pin_t& pin);

// What is seen of a text: of an attribute its value, its name or both; "" when it is hidden.
std::string gxi_lepton_seen(const gxi_lepton_text_t& text);
// Without the marks of an overbar: "\_RESET\_" is "~RESET" for a name, where it must stay distinct
// from RESET.
std::string gxi_lepton_plain(std::string_view text);
// A name with its bars, as gx/text/spelling.h has them in drawn names.
std::string gxi_lepton_name(std::string_view text);

gxi_look_t gxi_lepton_look(const gxi_lepton_text_t& text);
// The lines of `seen` at the place of the text, each a text, with their overbars.
void gxi_lepton_draw(const gxi_lepton_text_t& text, std::string_view seen,
                     std::vector<gxi_text_t>& texts, std::vector<gxm_shape_t>& shapes);
