// Shapes and texts of KiCad, as symbols and sheets have them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/kicad/sexpr.h"

// Units of 100 nm. In a symbol y goes up, on a sheet down.
struct gxi_kicad_point_t {
  int x = 0, y = 0;
  friend auto operator<=>(const gxi_kicad_point_t&, const gxi_kicad_point_t&) = default;
};

struct gxi_kicad_text_t {
  int line = 0;
  std::string text{};
  gxi_kicad_point_t at{};
  int rotate = 0;     // quarter turns counterclockwise
  int size = 12'700;  // of a capital letter
  bool hidden = false;
  gxi_align across = gxi_align::middle, up = gxi_align::middle;
};

// A field of a symbol or sheet.
struct gxi_kicad_field_t {
  std::string name{};
  gxi_kicad_text_t value{};
};

enum class gxi_kicad_fill : std::uint8_t { none, outline, background };

// A polyline (a rectangle and a curve are ones, too), arc (start, middle, end) or circle (centre).
struct gxi_kicad_shape_t {
  enum class kind_t : std::uint8_t { polyline, rectangle, arc, circle };
  kind_t kind = kind_t::polyline;
  std::vector<gxi_kicad_point_t> points{};
  int radius = 0, width = 0;
  bool dashed = false;
  gxi_kicad_fill fill = gxi_kicad_fill::none;
};

gxi_kicad_point_t gxi_kicad_point(const gxi_kicad_list_t& at);
int gxi_kicad_quarters(const gxi_kicad_list_t& at);  // of (at x y degrees), the nearest quarter
// Of (effects ...) in `item`, and of its (at x y degrees).
gxi_kicad_text_t gxi_kicad_text(const gxi_kicad_list_t& item, std::string_view text);
// The text of a text_box or table_cell, in lines that its box holds, where it lies in that.
gxi_kicad_text_t gxi_kicad_boxed_text(const gxi_kicad_list_t& item, bool in_symbol);
gxi_kicad_field_t gxi_kicad_field(const gxi_kicad_list_t& property);
// A polyline, rectangle, arc, circle, bezier, or the box of a text_box or table_cell; false for any
// other list.
bool gxi_kicad_shape(const gxi_kicad_list_t& item, std::vector<gxi_kicad_shape_t>& shapes);
