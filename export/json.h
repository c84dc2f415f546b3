// A design as JSON (docs/netlists.md), for kvdump --json, and in the form that Yosys writes and
// reads.
#pragma once

#include <cstdio>
#include <string_view>

#include "kvi/load.h"

void kv_write_json(const kvi_design_t& design, std::FILE* file);
// One flat module of that name.
void kv_write_yosys(const kvi_design_t& design, std::string_view name, std::FILE* file);
