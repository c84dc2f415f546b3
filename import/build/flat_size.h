// How large an expansion of a design becomes.
#pragma once

#include <cstdint>

#include "import/drawing/drawing.h"

// At least as many as it will store of its most frequent kind of record, or of characters. The
// design must be divided (import/build/divide/division.h).
std::int64_t gxi_flat_size(const gxi_design_t& design);
