// What a run will come to, reckoned from the sheets before the first visit.
#pragma once

#include <cstdint>

#include "expand/sheet_analysis.h"

// Adds what one visit of a sheet stores itself to what its instances were found to come to.
void kv_estimate_own(const kv_setup_t& setup, kv_sheet_t& sheet);
// Adds what one more instance of the sheet `below` comes to.
void kv_estimate_below(kv_sheet_t& sheet, const kv_sheet_t& below);

// Memory that this process may still take, in bytes.
std::int64_t kv_free_memory();
