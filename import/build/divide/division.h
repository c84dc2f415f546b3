// Sheets that would hold more than a GX file, or a check of it, can.
#pragma once

#include "import/drawing/drawing.h"

// Moves instances of such sheets into cells of one more level, or of several, whose pins are the
// nets that they share with the rest: first those that nobody drew, then all. A sheet of more
// names than a check compares is only rid of instances that nobody drew: what is drawn on one sheet
// stays on one while a file holds it. Reported in design.warnings. The design must be fit.
void gxi_divide(gxi_design_t& design);
