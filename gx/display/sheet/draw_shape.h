// Shapes on the screen: from design units to clipped strokes of pixels.
#pragma once

#include <optional>

#include "gx/display/strokes/draw_strokes.h"
#include "gx/picture/shape.h"

// Draws into the selected viewport, as marked by a highlight when one is given or the shape's net
// has one. What is neither selected nor marked has `color` instead of its own, when one is given. A
// line style outside 0..4 stops with invalid_style.
void gx_draw_shape(const gx_picture_t& picture, const gx_shape_t& shape,
                   const gx_highlight_t* mark = nullptr, std::optional<int> color = {});
