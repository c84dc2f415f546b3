// How the graphics and texts of xschem look here.
#pragma once

#include <functional>
#include <optional>

#include "import/drawing/drawing.h"
#include "import/xschem/attributes.h"
#include "import/xschem/records.h"

// 10 units of xschem, its usual step, are one grid step.
gx_pointreal_t gxi_xschem_point(gxi_xschem_point_t p);

// The nearest of the eight colours.
std::uint8_t gxi_xschem_color(int layer);

// L, B, A and P; false for what is not drawn (pins, pictures of simulations stay boxes).
bool gxi_xschem_shape(const gxi_xschem_shape_t& shape, gxm_shape_t& drawn);

gxi_look_t gxi_xschem_look(const gxi_xschem_text_t& text);

// The texts of a symbol, as one of its instances shows them: those without "@" are the same for
// all.
struct gxi_xschem_shown_t {
  std::string attribute{};  // the text is this attribute alone, "" otherwise
  std::string value{};
  gxi_look_t look{};  // of the symbol
};
using gxi_xschem_value_of_t = std::function<std::string(std::string_view)>;
// A text with what stands for its "@NAME"; nothing where it is blank, or shows values of a
// simulation, which come and go.
std::optional<std::string> gxi_xschem_shown_value(const gxi_xschem_text_t& text,
                                                  const gxi_xschem_value_of_t& value);
std::vector<gxi_xschem_shown_t> gxi_xschem_shown(const gxi_xschem_file_t& symbol, bool fixed,
                                                 const gxi_xschem_value_of_t& value);
