// What changed between two designs, as JSON.
#pragma once

#include <vector>

#include "compare/changes.h"
#include "export/output.h"

void kv_write_changes(const std::vector<kv_change_t>& changes, kv_output_t& out);
