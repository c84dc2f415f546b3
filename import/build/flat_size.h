// How large an expansion of a design becomes.
#pragma once

#include <cstdint>

#include "import/drawing/drawing.h"

// An upper bound for the largest array of the expanded design: records of a kind, or characters.
// The design must be divided (import/build/divide/division.h).
std::int64_t gxi_flat_size(const gxi_design_t& design);
