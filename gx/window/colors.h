// The eight colours of the package on whatever visual the screen has.
#pragma once

#include <span>

#include "gx/display/sheet/theme.h"

// Fills colorrec[0..7]. A colour that cannot be had exactly becomes the nearest that can, in the
// end black or white; colours other than black never become black.
void gx_init_colors();

// Other colours for the same numbers, 0 the ground; the window gets its ground with them.
void gx_set_colors(std::span<const gx_rgb_t> colors);
