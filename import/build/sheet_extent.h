// How far a sheet reaches.
#pragma once

#include "import/drawing/drawing.h"

// A box around everything drawn; around the origin when nothing is.
gx_boundsreal_t gxi_extent(const gxi_design_t& design, const gxi_sheet_t& sheet);
