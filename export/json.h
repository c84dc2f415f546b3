// A design as JSON (docs/netlists.md), for kvdump --json, and in the form that Yosys writes and
// reads; what changed between two designs as JSON.
#pragma once

#include <cstdio>
#include <string_view>
#include <vector>

#include "compare/changes.h"
#include "export/output.h"
#include "kvi/load.h"

void kv_write_json(const kvi_design_t& design, std::FILE* file);
// One flat module of that name.
void kv_write_yosys(const kvi_design_t& design, std::string_view name, std::FILE* file);

void kv_write_changes(const std::vector<kv_change_t>& changes, kv_output_t& out);
