// The glyphs of the stroke font, on their grid: a cell is 1200 units wide (the advance) and 1000
// high, the baseline is y = 0 and y grows upwards; strokes lie within 0..1000 both ways.
#pragma once

#include <cstdint>
#include <span>

#include "gx/text/records.h"

inline constexpr int gx_glyph_height = 1000;
inline constexpr int gx_glyph_advance = 1200;

// A point of a glyph, y upwards, in a text that reads upwards (1), downwards (3) or to the right:
// its way from the text's origin, in pixels.
gx_point16_t gx_turned(int x, int y, int rotation);

struct gx_grid_point_t {
  std::int16_t x = 0, y = 0;
};
using gx_stroke_t = std::span<const gx_grid_point_t>;  // a polyline of 2 points or more

// The 1..4 strokes of a character: of "!" .. "~", of common signs and letters beyond them
// (gx/display/strokes/stroke_signs.h), a box for any other that is to be seen; none for blanks and
// controls.
std::span<const gx_stroke_t> gx_glyph(char32_t code);
