// Symbols of KiCad, as the sheets that use them keep them: units, body styles, pins, shapes.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
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

struct gxi_kicad_pin_t {
  int line = 0;
  std::string type{}, shape{};  // passive, power_in ...; line, inverted ...
  gxi_kicad_point_t at{};       // its end, where wires join
  int rotate = 0, length = 0;   // towards the body
  bool hidden = false;
  std::string name{}, number{};
  int name_size = 12'700, number_size = 12'700;
  std::map<std::string, std::string, std::less<>> alternates{};  // other functions: their types
};

// What belongs to a unit and a body style; 0: to all of them.
struct gxi_kicad_unit_t {
  int unit = 0, style = 0;
  std::vector<gxi_kicad_shape_t> shapes{};
  std::vector<gxi_kicad_text_t> texts{};
  std::vector<gxi_kicad_pin_t> pins{};
};

struct gxi_kicad_symbol_t {
  int line = 0;
  std::string name{};
  bool power = false, local_power = false;
  bool names_hidden = false, numbers_hidden = false;
  int name_offset = 5'080;
  std::vector<gxi_kicad_field_t> fields{};
  std::vector<gxi_kicad_unit_t> units{};
  int number_of_units = 1;
  // Numbers of pins that are joined within.
  std::vector<std::vector<std::string>> jumpers{};
  bool same_numbers_joined = false;
};

using gxi_kicad_symbols_t =
    std::map<std::string, std::shared_ptr<const gxi_kicad_symbol_t>, std::less<>>;

// The symbols of a (lib_symbols) list by name; one that extends another has that one's units.
gxi_kicad_symbols_t gxi_kicad_read_symbols(const gxi_kicad_list_t& library);

// What symbols and sheets share.
gxi_kicad_point_t gxi_kicad_point(const gxi_kicad_list_t& at);
int gxi_kicad_quarters(const gxi_kicad_list_t& at);  // of (at x y degrees), the nearest quarter
// Of (effects ...) in `item`, and of its (at x y degrees).
gxi_kicad_text_t gxi_kicad_text(const gxi_kicad_list_t& item, std::string_view text);
gxi_kicad_field_t gxi_kicad_field(const gxi_kicad_list_t& property);
// A polyline, rectangle, arc, circle, bezier or text_box; false for any other list.
bool gxi_kicad_shape(const gxi_kicad_list_t& item, std::vector<gxi_kicad_shape_t>& shapes);
