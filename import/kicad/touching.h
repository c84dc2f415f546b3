// What lies on wires, also between their ends.
#pragma once

#include <vector>

#include "import/drawing/joining.h"
#include "import/kicad/records.h"

// A point, and the member that it belongs to.
struct gxi_kicad_touch_t {
  gxi_kicad_point_t at{};
  int member = 0;
};

// Joins the member of each point with all wires that the point lies on, ends included; wires are
// the first members, in their order. Time near to linear in both, however many wires overlap.
void gxi_kicad_join_touching(gxi_groups_t& groups, const std::vector<gxi_kicad_wire_t>& wires,
                             const std::vector<gxi_kicad_touch_t>& touches);

// Of each point whether it lies on a wire.
std::vector<bool> gxi_kicad_on_wires(const std::vector<gxi_kicad_wire_t>& wires,
                                     const std::vector<gxi_kicad_point_t>& points);
