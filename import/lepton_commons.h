// Nets of one name over the whole design.
#pragma once

#include <string>
#include <vector>

#include "import/drawing.h"

// A name that a net has in the whole design. One that is not `always` meant so is, when others of
// the design are: a name of the top sheet.
struct gxi_common_name_t {
  std::string name{};
  bool always = false;
};

struct gxi_commons_t {
  // By cell and net.
  std::vector<std::vector<std::vector<gxi_common_name_t>>> names{};
  // The cells that have a sheet, each behind those it uses.
  std::vector<int> order{};
};

// Sets the globals of nets, and the names of the instances that stand for them. Names whose nets
// are joined anywhere, on a sheet or through pins of cells, become one, which is told.
void gxi_share_names(gxi_design_t& design, const gxi_commons_t& commons);
