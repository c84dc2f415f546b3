// Smooth pictures: letters and lines with coverage, drawn in memory (gx/display/strokes/canvas.h)
// and sent where they changed. And how wide lines are, smooth or not.
#pragma once

#include <span>
#include <string_view>

#include "gx/display/strokes/canvas.h"
#include "gx/text/records.h"

inline constexpr int gx_max_line_width = 8;  // pixels

// The user's wish; false where the screen has too few colours: strokes then stay as they are.
// Whoever asks draws the window again.
bool gx_set_smooth(bool on);
// The canvas that strokes go to; null: they go to the screen.
gx_canvas_t* gx_canvas();
gx_pixel_t gx_pixel_of(int color);  // a colour of the pen
void gx_forget_shown();             // the window has lost its picture

// Pixels; 0: by the height of the screen, 1 at 1080, 2 at 2160.
void gx_set_line_width(int width);
int gx_line_width();  // at least 1

// Letters of one text: `across` and `up` are grid units per pixel
// (gx/display/strokes/stroke_font.h).
struct gx_letters_t {
  int across = 100, up = 100;
  int rotation = 0;
};
// One letter whose strokes, in pixels from its baseline origin and y upwards, are `strokes`.
void gx_smooth_letter(gx_canvas_t& canvas, const gx_letters_t& letters, char32_t code,
                      std::span<const gx_line16_t> strokes, gx_point16_t at, int color);
// A text too small to be read: a bar as long as each of its words.
void gx_text_bar(gx_canvas_t& canvas, std::u32string_view text, gx_point16_t at, int height,
                 int advance, int rotation, int color);
