// Values with engineering suffixes as the plain numbers that an expansion reads.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "import/drawing/drawing.h"

// "4.7k" is 4700, "10u" 0.00001, "2meg" 2000000, "1e-3" 0.001; letters after a suffix are a unit.
// Nothing when the text is no such number, or a negative one.
std::optional<std::string> gxi_plain_number(std::string_view text);

// The same for sums and products of such numbers and "@name" of enclosing instances:
// "'@w * 4.4u'" is "(w*0.0000044)". Nothing when the text says more than an expansion can compute.
std::optional<std::string> gxi_plain_expression(std::string_view text);

inline constexpr std::size_t gxi_longest_number = 95;  // characters that a property holds

// Makes the values of these properties plain, in instances and symbols; those that cannot be are
// reported in design.warnings and left.
void gxi_write_numbers(gxi_design_t& design, const std::vector<std::string>& names);
