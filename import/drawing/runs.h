// Which points lie on which straight pieces of wire, in time near to linear.
#pragma once

#include <span>
#include <vector>

#include "gx/db/object_records.h"

struct gxi_span_t {
  gx_pointreal_t from{}, to{};
};

// Spans that lie on one line and touch one another, without a gap, and the points on them.
struct gxi_run_t {
  std::vector<int> spans{};
  std::vector<int> points{};  // in order along the run, ends included
};

// Spans without length are in no run. A point may be in several runs, at most once in each; of
// points at one place all are. Coordinates within +-2^28.
std::vector<gxi_run_t> gxi_runs(std::span<const gxi_span_t> spans,
                                std::span<const gx_pointreal_t> points);
