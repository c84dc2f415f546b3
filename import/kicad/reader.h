// The reader of sheets of KiCad 6 and later. It gives a whole design or throws std::runtime_error
// with one line "FILE:LINE: what is wrong"; what it only cannot keep is in the design's warnings.
#pragma once

#include <string_view>

#include "import/drawing/drawing.h"
#include "import/drawing/source_file.h"

gxi_design_t gxi_read_kicad(const gxi_input_t& input);

// Whether the head of a file looks like the format; also of sheets of KiCad 5, which are refused.
bool gxi_is_kicad(std::string_view text);
