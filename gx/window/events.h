// The events of X as the kinds of gx/display/events.h.
#pragma once

#include "gx/display/events.h"

gx_event_t gx_wait_x_event();
void gx_ask_selection(bool from_clipboard);
bool gx_find_key(int kind, std::uint32_t keysym, std::uint32_t modifiers);
