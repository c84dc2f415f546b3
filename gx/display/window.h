// The X connection, the one window and its shared resources.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

#include "gx/display/screen_state.h"

// Opens the display, makes the window, colours, cursors and menu pixmaps, and creates the
// viewports (1..16 of them). No or wrong DISPLAY ends the process with status 1; other failures
// stop the program.
void gx_init(std::span<const gx_viewport_init_rec_t> viewports, std::string_view window_name);
int gx_number_of_planes();
void gx_set_title(std::string_view title);  // of the window and its icon

// The events of the user, and with them the window's own changes of size: a window that shrinks
// loses nothing and so is not exposed.
inline constexpr long gx_event_mask = 0x20804F;
inline constexpr long gx_structure_mask = 0x20000;

// The same package state without a display: no viewport, nothing is drawn.
void gx_init_nograph();

// The same, with viewports (1..16) over a drawable of `size` pixels that nobody sees: every view
// and conversion computes as in a window of that size, and what is drawn goes nowhere.
inline constexpr gx_point16_t gx_nominal_size = {983, 667};  // the window of a 1024x768 screen
void gx_init_noview(std::span<const gx_viewport_init_rec_t> viewports,
                    gx_point16_t size = gx_nominal_size);

// Makes X requests and waits for them; false when the server refused one. X errors never end the
// program: they are traced.
bool gx_without_x_error(const std::function<void()>& requests);

// Closes the display connection.
void gx_terminate();

// Waits until the server has done all requests; nothing without a display.
void gx_sync();
void gx_wait_sync();  // after 100 ms
