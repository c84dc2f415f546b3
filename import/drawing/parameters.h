// Parameters of cells: values that a block hands down to what is in it.
#pragma once

#include <string>
#include <vector>

#include "import/drawing/drawing.h"

// What is on the top sheet takes the defaults of its symbol, as no block is there to give others.
void gxi_take_top_defaults(gxi_design_t& design);

// The properties that an expansion can keep as numbers: design.parameters, and those of parts whose
// values refer to them, as far as all their values are numbers, or sums and products of numbers and
// such parameters of the cell that they are in. Only the first `most` of design.kept_of_instances
// are looked at: the others are not kept.
std::vector<std::string> gxi_number_names(const gxi_design_t& design, std::size_t most);
