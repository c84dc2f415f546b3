// What is told of instances, and what an expansion is told to keep of it.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "import/drawing/drawing.h"

// The name of a property for an attribute: with a "_" behind it where the name means something to
// KIVO.
std::string gxi_property_name(std::string_view attribute);

// Whether an expansion takes a CLASS for a port or a global: that of a part must be another.
bool gxi_class_has_meaning(std::string_view value);

// The properties of instances, the most used first: `uses` by name, and one for each symbol that
// has it as a default.
void gxi_keep_most_used(gxi_design_t& design, std::map<std::string, int> uses);

// A symbol does not tell what one of its instances tells otherwise.
void gxi_drop_doubled_properties(gxi_design_t& design);
