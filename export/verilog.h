// A netlist as structural Verilog, for kvverilog.
#pragma once

#include <cstdio>
#include <string_view>

#include "kvi/load.h"

// A module for each block, those that come out the same once, and one for each kind of part, which
// has ports alone; `flat`: one module with all parts. The top module has the name given.
//
// Names are escaped where Verilog asks it. A net that a block shares with others without a pin of
// its own, as a supply, comes in by a port more.
void kv_write_verilog(const kvi_design_t& design, std::string_view name, bool flat,
                      std::FILE* file);
