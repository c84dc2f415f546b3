// The properties of instances, and those that an expansion keeps.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/drawing.h"

// The name of a property for an attribute: with a "_" after it where the name means something to
// KIVO.
std::string gxi_property_name(std::string_view attribute);

// Whether an expansion takes a CLASS for a port or a global: that of a part must be another.
bool gxi_class_has_meaning(std::string_view value);

// Of an instance: the model or the cell that its netlist names, where no attribute alone does.
inline constexpr std::string_view gxi_spice_model = "spice_model";
// Of a net: it is meant to be joined to one pin.
inline constexpr std::string_view gxi_noconn = "NOCONN";
// Of a pin: its electrical type, in the words of the table in app/check/electrical.cpp. Of a net:
// the type of a pin that is not there, as of a symbol that only says where a supply comes from.
inline constexpr std::string_view gxi_electrical = "ELECTRICAL";

// The properties of parts to keep: those of the first set of `telling`, then of the next ones, then
// the others, and of each those that most parts have, their own or their symbol's. What is
// `used_up`, as it names a node or is a part of a name, and in no set, is not kept.
using gxi_telling_t = std::vector<std::set<std::string>>;
void gxi_keep_most_used(gxi_design_t& design, const gxi_telling_t& telling,
                        const std::set<std::string>& used_up);

// Makes a default of every property of a symbol that one of its instances overrides.
void gxi_make_overridden_defaults(gxi_design_t& design);
