// Which instances of a sheet belong together.
#pragma once

#include <cstddef>
#include <vector>

#include "import/drawing/drawing.h"

// An instance that may be moved, and what goes with it: objects of wires and pictures.
struct gxi_movable_t {
  std::size_t instance = 0;  // of the sheet
  std::size_t with_it = 0;
};

struct gxi_group_limits_t {
  std::size_t objects = 0, instances = 0;
  std::size_t names = 0;  // of nets
};

// Each instance into one group; a group with its ports keeps to the limits, unless a single
// instance does not. A group grows by the instance that it shares most with, so that few nets
// leave it. In time near to linear.
std::vector<std::vector<gxi_movable_t>> gxi_group(const gxi_design_t& design,
                                                  const gxi_sheet_t& sheet,
                                                  const std::vector<gxi_movable_t>& movable,
                                                  const gxi_group_limits_t& limits);
