// What is drawn on a sheet besides symbols and texts.
#pragma once

#include "import/drawing/drawing.h"
#include "import/kicad/nets.h"

// Wires become segments of their nets; buses, entries, dots of buses and no-connect marks are only
// drawn.
void gxi_kicad_draw_lines(const gxi_kicad_file_t& records, const gxi_kicad_joined_t& joined,
                          gxi_sheet_t& sheet);
// Crosses out a part that is not populated.
void gxi_kicad_cross_out(const gxi_instance_t& instance, const gxi_symbol_t& sign,
                         gxi_sheet_t& sheet);
