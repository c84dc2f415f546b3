// Shapes in pixels.
#pragma once

#include "gx/display/screen_state.h"

// A filled square of side 2 * half_size around the pixel, when it lies whole in the clip window.
void gx_display_dot(gx_vpid_t vpid, gx_point16_t pixel, int half_size, int color);
// `pixel_width` nested outlines.
void gx_display_rectangle(gx_point16_t p1, gx_point16_t p2, int style, int color, int pixel_width);
void gx_display_rectangle_dot(gx_point16_t p1, gx_point16_t p2, int color, int dot_size);
