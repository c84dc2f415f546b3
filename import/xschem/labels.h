// Names of several bits, as xschem writes them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

inline constexpr std::size_t gxi_xschem_most_bits = 20000;

// The single names that a label stands for, in its order: "A[7:0]", "A[7:0:2]" (in steps),
// "A[3,1]", "A[3..0]" (A3, A2, A1, A0), "A,B[1:0]", "2*X" (X,X), "X[1:0]*2" (each twice), with
// parentheses. A text of another form is one name; more than gxi_xschem_most_bits are none.
std::vector<std::string> gxi_xschem_bits(std::string_view label);

// "A" of "A[7:0]".
std::string_view gxi_xschem_label_base(std::string_view label);
