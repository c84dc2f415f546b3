// The readable listing of a design, "kivo_data".
#pragma once

#include <cstdio>
#include <string_view>

#include "expand/design.h"

// Both write to `file`; false when something could not be written.
// The head: the listing's path and the summary.
bool kv_write_listing_head(const kv_design_t& design, std::FILE* file, std::string_view path);
// Every record, and the closing line.
bool kv_write_listing_body(const kv_design_t& design, std::FILE* file);
