// What buses join on a sheet of KiCad.
#pragma once

#include "import/drawing/joining.h"
#include "import/kicad/members.h"

// A bus is the nets that its labels and pins of blocks name.
void gxi_kicad_join_buses(const gxi_kicad_members_t& members, gxi_groups_t& groups);
