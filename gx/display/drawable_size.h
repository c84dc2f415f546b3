// The size of the drawable and what follows it.
#pragma once

// A new size in pixels, at least 2 x 2: the pointer is in its middle, the texts of list and command
// line take their share of it. The viewports follow by gx_viewports_update.
void gx_take_size(int width, int height);
