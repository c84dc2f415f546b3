// Pictures in memory on the screen: where it has true colours, 16 or 32 bits a pixel.
#pragma once

#include "gx/display/strokes/canvas.h"

bool gx_takes_pixels();
void gx_put_pixels(const gx_canvas_t& canvas, const gx_pixel_box_t& box);
