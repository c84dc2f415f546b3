// The X connection, the one window and its shared resources.
#pragma once

#include <functional>
#include <span>
#include <string_view>

#include "gx/display/screen_state.h"

// Opens the display, makes the window, colours, cursors and menu pixmaps, and creates the
// viewports (1..16 of them). No or wrong DISPLAY ends the process with status 1; other failures
// stop the program.
void gx_init(std::span<const gx_viewport_init_rec_t> viewports, std::string_view window_name);

// The events of the user, and with them the window's own changes of size: a window that shrinks
// loses nothing and so is not exposed.
inline constexpr long gx_event_mask = 0x20804F;
inline constexpr long gx_structure_mask = 0x20000;
void gx_input_enable(long mask);

// Makes X requests and waits for them; false when the server refused one. X errors never end the
// program: they are traced.
bool gx_without_x_error(const std::function<void()>& requests);
