// A design as large as wanted, for benchmarks and limits: a static memory on transistor level.
#pragma once

#include <string>

// The description of the design "array": `blocks` blocks of 8 rows of 8 cells, above 64 blocks in
// banks of 64, with what is left of them beside the banks. A cell has 8 leaf instances, a block 24
// more, the top sheet 18. VDD, GND and the clock reach every cell. `variants` (1..8) different
// cells take turns, so that with 8 no two neighbours share a sheet. Primitives are the instances
// with a CLASS.
std::string gxm_memory_array(int blocks, int variants);
inline constexpr int gxm_most_array_blocks = 2000;  // over a million leaves

// What a run makes of it.
struct gxm_array_counts_t {
  int leaves = 0, pins = 0, nets = 0, net_childs = 0, macros = 0, macro_pins = 0;
};
gxm_array_counts_t gxm_count_memory_array(int blocks);
