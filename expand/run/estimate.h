// What a run will store, estimated from the sheets before the first visit.
#pragma once

#include <cstdint>

#include "expand/setup.h"
#include "expand/sheet/sheet_records.h"

// Adds the size of the sheet's own records to the total of its instances.
void kv_estimate_own(const kv_setup_t& setup, kv_sheet_t& sheet);
// Adds the size of one more instance of the sheet `below`.
void kv_estimate_below(kv_sheet_t& sheet, const kv_sheet_t& below);

// Memory that this process may still take, in bytes.
std::int64_t kv_free_memory();
