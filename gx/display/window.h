// A window's share of the package: its state when there is no window, and what is asked of one.
// gx/window opens the one of X.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "gx/display/screen_state.h"

// The package state without a display: no viewport, nothing is drawn.
void gx_init_nograph();

// The same, with viewports (1..16) over a drawable of `size` pixels that nobody sees: every view
// and conversion computes as in a window of that size, and what is drawn goes nowhere. The state
// must be fresh.
inline constexpr gx_point16_t gx_nominal_size = {983, 667};  // the window of a 1024x768 screen
void gx_init_noview(std::span<const gx_viewport_init_rec_t> viewports,
                    gx_point16_t size = gx_nominal_size);

// For who opens a screen: stops when one is open already or the number of viewports is wrong; makes
// the state fresh; takes the drawable's size, sets the texts that follow it and makes the
// viewports.
void gx_check_start(std::span<const gx_viewport_init_rec_t> viewports);
void gx_reset_package();
void gx_lay_out(int width, int height, std::span<const gx_viewport_init_rec_t> viewports);

int gx_number_of_planes();                  // 0 without a display
void gx_set_title(std::string_view title);  // of the window and its icon
void gx_terminate();                        // closes the display connection

// Waits until the server has done all requests; nothing without a display.
void gx_sync();
void gx_wait_sync();  // after 100 ms
