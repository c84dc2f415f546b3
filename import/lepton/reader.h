// The reader of drawings of Lepton EDA. It gives a whole design or throws std::runtime_error with
// one line "FILE:LINE: what is wrong"; what it only cannot keep is in the design's warnings.
#pragma once

#include <string_view>

#include "import/drawing/drawing.h"
#include "import/drawing/source_file.h"

gxi_design_t gxi_read_lepton(const gxi_input_t& input);

// Whether the head of a file looks like the format.
bool gxi_is_lepton(std::string_view text);
