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

// A label at ports of XSPICE.
struct gxi_xschem_port_label_t {
  std::string nets{};                 // "B" for "~B", "A,B" for "%vd(A B)"
  std::vector<std::string> around{};  // of each net what a deck has around it: "~@", "%vd(@", "@)"
};
gxi_xschem_port_label_t gxi_xschem_port_label(std::string_view label);

// The label of the tapped net: of `bus`, the label of the bus, and of what the tap says of it: bits
// by their indexes ("[3]", "[7:4]", "4..1", "0"), or a name of its own.
std::string gxi_xschem_tapped(std::string_view bus, std::string_view tap);
