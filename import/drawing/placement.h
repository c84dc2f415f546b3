// Where a drawing's instances and texts lie, in the terms of a GX sheet.
#pragma once

#include <utility>
#include <vector>

#include "import/drawing/drawing.h"

// The same placement as turns and the mirror of a GX instance (which mirrors after it turned).
struct gxi_turn_t {
  std::uint8_t rotate = 0;
  bool fliph = false;
};
gxi_turn_t gxi_turn_of(const gxi_instance_t& instance);

// A point of the symbol on the sheet.
gx_pointreal_t gxi_on_sheet(const gxi_instance_t& instance, gx_pointreal_t of_symbol);

// The look of a symbol's text as its instance shows it: the readable one of the two ways round.
gxi_look_t gxi_on_sheet(const gxi_instance_t& instance, gxi_look_t look);

// One line of a text as a property keeps it: the left end of its baseline, read to the right or
// (rotate 1) upwards.
struct gxi_line_t {
  std::string text{};
  gx_pointreal_t at{};
  std::uint8_t rotate = 0;
};
// Lines longer than a screen draws come in pieces, empty ones are left out; of a kept text kept
// ones.
inline constexpr std::size_t gxi_longest_value = 95;  // of a property
std::vector<gxi_line_t> gxi_lines(std::string_view kept, const gxi_look_t& look);
// Of that line of a text alone.
gxi_look_t gxi_look_of(const gxi_line_t& line, const gxi_look_t& look);

// Lines above the letters of a text that have a bar: each from a byte to the one after its last.
using gxi_bars_t = std::vector<std::pair<std::size_t, std::size_t>>;
void gxi_draw_bars(const gxi_bars_t& bars, std::string_view text, const gxi_look_t& look,
                   std::vector<gxm_shape_t>& shapes);

// What an instance shows but has not as a value: properties SHOWN1, SHOWN2 ..., one a line.
void gxi_show(std::string_view text, const gxi_look_t& look,
              std::vector<gxi_property_t>& properties);

// The place and the turns to store in a property below an instance, so that a line of `length`
// characters is seen as `line` says.
struct gxi_stored_t {
  gx_pointreal_t at{};
  std::uint8_t rotate = 0;
};
gxi_stored_t gxi_below(const gxi_instance_t& instance, const gxi_line_t& line, std::int32_t height);

// Places for pins that a symbol does not draw: a row below its shapes and pins.
class gxi_row_below_t {
 public:
  explicit gxi_row_below_t(const gxi_symbol_t& symbol);
  void keep_below(gx_pointreal_t place);  // before the first next()
  gx_pointreal_t next();

 private:
  gx_pointreal_t lowest_{};
  std::int32_t taken_ = 0;
};

// A symbol drawn by itself, without being joined: its shapes and texts become those of the sheet.
void gxi_draw_apart(const gxi_symbol_t& symbol, const gxi_instance_t& instance, gxi_sheet_t& sheet);
// What stands for a symbol that is not found: a box with its name.
void gxi_draw_missing(const std::string& name, gxi_symbol_t& symbol);
