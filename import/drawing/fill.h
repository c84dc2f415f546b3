// Filled shapes: of all shapes of a GX file only rectangles are filled.
#pragma once

#include <vector>

#include "import/drawing/drawing.h"

// Puts filled rectangles, without an outline of their own, after each filled polyline or circle of
// `shapes`: rows of its inside, by even and odd crossings of its outline.
void gxi_fill_with_boxes(std::vector<gxm_shape_t>& shapes);
