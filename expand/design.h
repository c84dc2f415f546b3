// The making of an expanded design: the checked way to its records, and the writers of texts and
// properties.
//
// Nothing here asks for the session. What asks for a record that an array may not hold throws
// kv_store_full_t; a bad index writes a debug line and ends in kv_error_stop.
#pragma once

#include <cstdint>
#include <string_view>

#include "netlist/records.h"

// Sets the nine counters to 0; blocks are kept for the next run. A fresh design has no memory yet:
// from now on its arrays share theirs.
void kv_empty_design(kv_design_t& design);
// How many records each array may hold from now on.
void kv_limit_design(kv_design_t& design, std::int32_t limit);

// Reports a full array as the debug file has it: its name and how far it was to go.
void kv_debug_full(const kv_store_full_t& full);
// Reports an index that an array does not hold, and stops.
[[noreturn]] void kv_bad_index(std::string_view name, std::int32_t index, std::int32_t count);

// Record `index` of an array of a design; one that it does not hold is fatal.
template <typename Record>
Record& kv_record(kv_blocked_t<Record>& array, std::int32_t index) {
  if (!array.holds(index)) kv_bad_index(kv_record_name<Record>, index, array.count);
  return array[index];
}
template <typename Record>
const Record& kv_record(const kv_blocked_t<Record>& array, std::int32_t index) {
  if (!array.holds(index)) kv_bad_index(kv_record_name<Record>, index, array.count);
  return array[index];
}

// The first character of a string, which the design holds; fatal when it is out of bounds.
const char* kv_chars_of(const kv_design_t& design, std::int32_t string_index);
// The characters of a string; "" for 0.
std::string_view kv_text(const kv_design_t& design, std::int32_t string_index);

// --- writers: the new index
std::int32_t kv_save_string(kv_design_t& design, std::string_view text);  // over 100 is fatal
std::int32_t kv_save_prop_str(kv_design_t& design, std::string_view text);
std::int32_t kv_save_prop_int(kv_design_t& design, std::int32_t v1, std::int32_t v2,
                              std::int32_t v3);
std::int32_t kv_save_prop_time(kv_design_t& design, std::int32_t v1, std::int32_t v2,
                               std::int32_t v3);
std::int32_t kv_save_prop_real(kv_design_t& design, float v1, float v2, float v3);
