// How many objects a sheet will have, before it is built.
#pragma once

#include <cstddef>

#include "import/drawing/drawing.h"

// Of a file, and how many names of a kind a check of the sheet compares.
inline constexpr std::size_t gxi_most_objects = 30000, gxi_most_names = 999;

// Of the sheet of a cell. Wires that other wires or pins cut count once: keep some room for them.
std::size_t gxi_count_objects(const gxi_design_t& design, const gxi_cell_t& cell);

// What one instance takes, without its symbol, and a symbol, which is on a sheet once.
std::size_t gxi_count_objects(const gxi_design_t& design, const gxi_instance_t& instance);
std::size_t gxi_count_objects(const gxi_symbol_t& symbol);

// Of a net without wires, of a port that brings it in, and of a pin of a symbol and its instance.
inline constexpr std::size_t gxi_objects_of_net = 3, gxi_objects_of_port = 5,
                             gxi_objects_of_pin = 4;
