// Texts drawn with the stroke font: at the fixed size of the screen texts, or at any height in four
// orientations on the sheet. Texts are UTF-8. At most 60 characters of one are drawn; those without
// a glyph (gx/display/strokes/stroke_font.h) draw nothing but advance. Pixels are window
// coordinates. Without a display nothing is drawn.
#pragma once

#include <span>
#include <string_view>

#include "gx/display/screen_state.h"
#include "gx/display/strokes/stroke_font.h"
#include "gx/display/strokes/stroke_layers.h"
#include "gx/text/messages/message_list.h"

// Scales the glyphs for gx_hortext to cmd_height and cmd_step; nothing while either is 0.
void gx_setarray_hortext();

// Horizontal text from character `istart` (from 1) on, its top left at (x, y). The background is
// cleared first: a whole line, or just after the text.
void gx_hortext(gx_vpid_t vpid, std::string_view text, int istart, int x, int y, bool whole_line,
                int color);

// The segments of one character at the scale of gx_hortext, in pixels from its baseline origin, y
// upwards.
std::span<const gx_line16_t> gx_scaled_glyph(char32_t code);

// Text with its baseline at (x, y), `height` pixels high: rotation 1 reads upwards, 3 downwards,
// any other to the right. `opaque` clears its box first.
void gx_text(gx_vpid_t vpid, std::string_view text, int x, int y, int height, int rotation,
             int color, bool opaque = false);

// One stroke of a glyph, scaled, turned and placed at (x0, y0).
void gx_polyline_char_2d16(gx_vpid_t vpid, int x0, int y0, int height, int rotation,
                           gx_stroke_t stroke, int color);
// A solid polyline of pixel points, each kept within the window. More than 256 points stop with
// invalid_polyline_2d.
void gx_polyline_2d16(std::span<const gx_point16_t> points, int color);
