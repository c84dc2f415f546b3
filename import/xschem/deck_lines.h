// What a component of xschem says in a deck for SPICE.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "import/xschem/placed.h"

// The line of a device (deck/deck_file.h) for instance `k` of its vector. `around` gives what is
// around a bit of one of its nodes: "@" for the node alone, "~@" for one that its label inverts.
std::string gxi_xschem_deck_line(
    const gxi_xschem_placed_t& placed, std::size_t line, std::size_t k,
    const std::function<std::string(std::size_t node, std::size_t bit)>& around);

// The text that a component of netlist commands adds, by its format.
std::string gxi_xschem_statements(const gxi_xschem_placed_t& placed);

// Commands among the lines of its format, and what it wants saved. `net` names the nets of a pin.
std::string gxi_xschem_deck_commands(const gxi_xschem_placed_t& placed,
                                     const std::function<std::string(int)>& net);

// What the call of a cell may set, with the values where it does not.
std::vector<std::pair<std::string, std::string>> gxi_xschem_deck_parameters(
    const gxi_xschem_placed_t& placed);
