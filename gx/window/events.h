// The events of X as the kinds of gx/display/input/events.h.
#pragma once

#include "gx/display/input/events.h"

gx_event_t gx_wait_x_event();
void gx_ask_selection(bool from_clipboard);
bool gx_find_key(int kind, std::uint32_t keysym, std::uint32_t modifiers);
