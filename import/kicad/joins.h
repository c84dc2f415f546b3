// What of a sheet of KiCad is one net: by place, by name, within its symbols and the sheets below.
#pragma once

#include <map>

#include "import/drawing/joining.h"
#include "import/kicad/members.h"

// Joins everything at one place.
class gxi_kicad_meetings_t {
 public:
  explicit gxi_kicad_meetings_t(gxi_groups_t& groups) : groups_(groups) {}
  void meet(gxi_kicad_point_t at, int member);

 private:
  gxi_groups_t& groups_;
  std::map<gxi_kicad_point_t, int> at_{};
};

// All but buses.
void gxi_kicad_join_wires(const gxi_kicad_members_t& members, gxi_groups_t& groups);
