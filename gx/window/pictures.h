// Pictures off the screen: the one that is drawn at the moment, what menu levels cover, and those
// in memory that are sent.
#pragma once

#include "gx/display/strokes/canvas.h"
#include "gx/text/records.h"

bool gx_begin_picture();
void gx_end_picture(const gx_bounds16_t& shown);
void gx_keep_area(int level, int x, int y, int width, int height);
void gx_put_area_back(int level, int x, int y, int width, int height);

// Pictures in memory: where the screen has true colours, 16 or 32 bits a pixel.
bool gx_takes_pixels();
void gx_put_pixels(const gx_canvas_t& canvas, const gx_pixel_box_t& box);
