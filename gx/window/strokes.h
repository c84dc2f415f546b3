// Strokes as requests of X, to the window or to the picture that nobody sees yet.
#pragma once

#include "gx/display/strokes/stroke_layers.h"

// For a new graphics context, of which nothing is known, and after a change of the colours.
void gx_begin_strokes();
void gx_forget_context();

void gx_draw_strokes(const gx_stroke_group_t& group);
void gx_clip_strokes(const gx_box16_t& box);
void gx_clear_area(int x, int y, int width, int height);
void gx_set_exclusive_or(bool on);

// Prepares the graphics context for requests made past the pen: colour, style, thin lines.
// A style outside 0..4 stops with invalid_style.
void gx_set_line_dashed(int style, int color);
