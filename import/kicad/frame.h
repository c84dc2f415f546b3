// The frame of a sheet and its title block.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "import/drawing/drawing.h"
#include "import/kicad/symbols.h"

// What a title block says, by the keywords of a (title_block) list.
using gxi_kicad_title_t = std::vector<std::pair<std::string, std::string>>;

// Draws the edge of a paper of this size, and the block into its lower right corner: the title, who
// drew it, and the comments. `file` is the name of the sheet's file. Nothing without a size.
void gxi_kicad_draw_frame(gxi_kicad_point_t paper, const gxi_kicad_title_t& title,
                          const std::string& file, gxi_sheet_t& sheet);
