// What is joined because it meets on the sheet.
#pragma once

#include <span>
#include <vector>

#include "import/drawing/runs.h"

// Groups of things that are joined; the smallest member stands for its group.
class gxi_groups_t {
 public:
  explicit gxi_groups_t(std::size_t size);
  int root(int i);
  void join(int a, int b);

 private:
  std::vector<int> parent_;
};

struct gxi_met_pin_t {
  gx_pointreal_t at{};
  int member = 0;
};

// Wires are the first members, in their order. Joins what has one place, and what lies on the
// middle of a wire; of a slanted wire only when `slanted` says so.
void gxi_join_places(gxi_groups_t& groups, std::span<const gxi_span_t> wires,
                     std::span<const gxi_met_pin_t> pins, bool slanted);
