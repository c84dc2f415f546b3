// Texts of symbols that cannot stay there.
#pragma once

#include "import/drawing/drawing.h"

// A symbol keeps each line of its texts by itself, readable in every placement; where an instance
// is turned over, or mirrored, the lines of one text would change places. Such a text is shown by
// the instances of the symbol instead, all of them.
void gxi_hand_out_texts(gxi_design_t& design);
