// What a GX design asks of a drawing before it can be built: names that are unique and short, texts
// in ASCII, an instance for each port and global, a net on every pin.
#pragma once

#include "import/drawing/drawing.h"

// Changes the design so that every sheet can be built as it stands. What cannot be kept as drawn is
// reported in design.warnings.
void gxi_fit(gxi_design_t& design);
