// Sheets that would hold more objects than a GX file can.
#pragma once

#include "import/drawing.h"

// Divides such sheets: their instances move, in order, into cells of one more level, whose pins are
// the nets that they share with the rest. Told in design.warnings. The design must be fit.
void gxi_divide(gxi_design_t& design);
