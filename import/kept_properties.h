// What an expansion is told to keep.
#pragma once

#include <map>
#include <string>

#include "import/drawing.h"

// The properties of instances, the most used first: `uses` by name, and one for each symbol that
// has it as a default.
void gxi_keep_most_used(gxi_design_t& design, std::map<std::string, int> uses);
