// The eight colours of the package on whatever visual the screen has.
#pragma once

// Fills colorrec[0..7]. A colour that cannot be had exactly becomes the nearest that can, in the
// end black or white; colours other than black never become black.
void gx_init_colors();
