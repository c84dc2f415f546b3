// Shapes on the screen: from design units to clipped strokes of pixels.
#pragma once

#include "gx/display/strokes/draw_strokes.h"
#include "gx/picture/shape.h"

// Draws into the selected viewport, as marked by a highlight when one is given or the shape's net
// has one. A line style outside 0..4 stops with invalid_style.
void gx_draw_shape(const gx_picture_t& picture, const gx_shape_t& shape,
                   const gx_highlight_t* mark = nullptr);
