// The pointer: its shape, its position, and the rectangle that follows it.
#pragma once

#include "gx/text/records.h"

// Shapes, by index: 1 X, 2 crosshair, 3 down, 4 left, 5 right, 6 up arrow, 7 thin cross, 8 I-beam,
// 9 watch. While a command runs the watch is shown instead. A bad index stops with
// draw_cursor_invalid. Nothing without a display.
void gx_cursor_set_pattern(int index);
void gx_cursor_active();
void gx_cursor_erase();
// Pixels of the window; kept 18 from its edges.
void gx_cursor_set_position(gx_point16_t pixel);
// The same for a pointer that is still within 18 pixels of `from`; one that was moved on stays.
void gx_cursor_set_position(gx_point16_t pixel, gx_point16_t from);

// The rubber rectangle from pixel_ptr1 to the pointer.
void gx_rectangle_action();  // it follows the pointer
void gx_rectangle_erase();   // takes it off the screen; the next move shows it again
gx_pointreal_t gx_inq_base_point();
