// Input: the next X event as one of a small set of kinds, and what the pointer does to the command
// line and to the rubber rectangle.
#pragma once

#include <cstdint>

#include "gx/display/screen_state.h"

enum class gx_event_kind {
  key_press = 0,
  key_release = 1,
  pointer_moved = 2,    // or the wheel was turned
  pointer_at_rest = 3,  // for half a second
  button1_down = 4,
  button1_up = 5,
  button2_down = 6,
  button2_up = 7,
  button3_down = 8,
  button3_up = 9,
  menu_line = 10,     // the pointer is on a line of the menu shown
  menu_outside = 11,  // it is outside the menu shown
  menu_opening = 12,  // it is in the right third, where the next level opens
  exposed = 13,       // everything must be drawn again, perhaps in a new size
  modifier_key = 14,
  nothing = 15,
  close_asked = 16,  // the desktop asks to close the window
};

struct gx_event_t {
  gx_event_kind kind = gx_event_kind::nothing;
  std::uint32_t code = 0;       // keysym, or menu level
  std::uint32_t modifiers = 0;  // keys: 0, 1 shift, 4 control or 8 alt; buttons: a sum of them
  gx_point16_t pixel;           // within the window
  std::uint32_t time = 0;       // server milliseconds
  int wheel = 0;                // 1 turned away from the user, -1 towards
};

// Blocks until one event has been read. Keeps the pointer state, the key state and the window size
// in gx_vext up to date on the way.
gx_event_t gx_input_event_wait();
// Removes a queued key press (kind 0) or release (kind 1) with that keysym and modifiers; false
// when there is none, for other kinds, and without a display.
bool gx_find_event(int kind, std::uint32_t keysym, std::uint32_t modifiers);
void gx_input_enable(long mask);

// --- editing of the command line by the pointer (line_edit.cpp); `pixel` is a window pixel
// The character of the command line under the pixel, from 1; below 1 and past the end too.
int gx_cmd_column(gx_point16_t pixel);
// The pixel in the middle of a character of the command line.
gx_point16_t gx_cmd_column_pixel(int column);
void gx_pixel_pos_action();
void gx_again_action(gx_vpid_t vpid, gx_point16_t pixel);    // recalls a list line
void gx_backsp_action(gx_vpid_t vpid, gx_point16_t pixel);   // deletes before the pointer
void gx_chardel_action(gx_vpid_t vpid, gx_point16_t pixel);  // deletes under the pointer

// --- the rubber rectangle from pixel_ptr1 to the pointer (rubber_rectangle.cpp)
void gx_rectangle_action();  // it follows the pointer
void gx_rectangle_erase();   // takes it off the screen; the next move shows it again
gx_pointreal_t gx_inq_base_point();
