// Input: the next X event as one of a small set of kinds.
#pragma once

#include <cstdint>
#include <string>

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
  close_asked = 16,  // the desktop asks to close the window, or a signal to end
  pasted = 17,       // the text that gx_ask_for_text asked for is there
};

struct gx_event_t {
  gx_event_kind kind = gx_event_kind::nothing;
  std::uint32_t code = 0;       // keysym, or menu level
  std::uint32_t modifiers = 0;  // keys: 0, 1 shift, 4 control or 8 alt; buttons: a sum of them
  gx_point16_t pixel;           // within the window
  std::uint32_t time = 0;       // server milliseconds
  int wheel = 0;                // 1 turned away from the user, -1 towards
  // button1_up: 1 a click, a press and release within 3 pixels and 300 ms; 2 the second of a double
  // click; 0 a drag. `pressed` is where it began, of a double click where the first one did.
  int clicks = 0;
  gx_point16_t pressed;
  bool resized = false;  // exposed: the window has another size
  std::string text;      // pasted: what another program has, at most 1000 bytes
};

// Blocks until one event has been read. Keeps the pointer state, the key state and the window size
// in gx_vext up to date on the way.
gx_event_t gx_input_event_wait();
// Asks for what another program has selected, or put into the clipboard: an event will bring it.
void gx_ask_for_text(bool from_clipboard);
// Input that comes while no X event is there. `descriptor` is asked before each wait, -1: none;
// `read` is called when there is something to read. None at first.
struct gx_other_input_t {
  int (*descriptor)() = nullptr;
  void (*read)() = nullptr;
};
void gx_set_other_input(const gx_other_input_t& input);
const gx_other_input_t& gx_other_input();
// Removes a queued key press (kind 0) or release (kind 1) with that keysym and modifiers; false
// when there is none, for other kinds, and without a display.
bool gx_find_event(int kind, std::uint32_t keysym, std::uint32_t modifiers);
