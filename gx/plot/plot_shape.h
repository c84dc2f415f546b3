// Shapes as pen moves, into the plot that is open.
#pragma once

#include <cstdint>

#include "gx/picture/shape.h"

// Lines are thick where they are long enough for it, boxes are outlines, colours and styles play no
// part. The page, marks and selections are not plotted.
void gx_plot_shape(const gx_shape_t& shape, std::int32_t page_height);
// A filled square of half size `half_size` around (x, y), design units.
void gx_plotfile_dot(std::int32_t page_height, std::int32_t x, std::int32_t y,
                     std::int32_t half_size);
