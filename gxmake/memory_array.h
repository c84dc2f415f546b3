// A design as large as wanted, for benchmarks and limits: a static memory on transistor level.
#pragma once

#include <string>

// The description of the design "array": `blocks` blocks of 8 rows of 8 cells. A cell has 8 leaf
// instances, a block 24 more, the top sheet 18. VDD, GND and the clock reach every cell.
// `variants` (1..8) different cells take turns, so that with 8 no two neighbours share a sheet.
// Primitives are the instances with a CLASS.
std::string gxm_memory_array(int blocks, int variants);

constexpr int gxm_memory_array_leaves(int blocks) { return blocks * (8 * 8 * 8 + 24) + 18; }
constexpr int gxm_memory_array_pins(int blocks) { return blocks * (8 * 8 * 28 + 72) + 52; }
constexpr int gxm_memory_array_macros(int blocks) { return blocks * (1 + 8 + 64); }
