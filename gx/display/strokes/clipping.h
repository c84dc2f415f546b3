// Which part of an item lies in the clip window V of a viewport. Window pixels.
#pragma once

#include "gx/display/screen_state.h"
#include "gx/display/strokes/pen.h"

// Cuts the line to V shrunk by one pixel on every side; false when nothing of it is visible. A line
// of length 0 and any line of a blocked viewport is invisible.
bool gx_line_clipping(gx_vpid_t vpid, gx_line16_t& line);

// The square around the circle meets V.
bool gx_circle_clipping(gx_vpid_t vpid, gx_point16_t centre, int radius);

// Both corners lie in V, edges included.
bool gx_filled_rectangle_clipping(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2);

// One of the points lies strictly inside V and the viewport is not blocked.
bool gx_arc_clipping(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2, gx_point16_t p3);
