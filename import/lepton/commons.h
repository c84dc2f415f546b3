// Nets of one name over the whole design.
#pragma once

#include <string>
#include <vector>

#include "import/drawing/drawing.h"

// The name that a net has beyond its sheet; "" when it has none. `always`
// false: global only if another sheet makes the name global, as a name of the top sheet.
struct gxi_common_name_t {
  std::string name{};
  bool always = false;
  bool is_named = false;  // if only within its sheet
};

struct gxi_commons_t {
  // By cell and net.
  std::vector<std::vector<gxi_common_name_t>> names{};
  // The cells that have a sheet, each after those it uses.
  std::vector<int> order{};
};

// Sets the globals of nets, and the names of the instances that stand for them. A net has one name:
// that of a net above counts before that of its port, which an unnamed one takes over.
void gxi_share_names(gxi_design_t& design, const gxi_commons_t& commons);
