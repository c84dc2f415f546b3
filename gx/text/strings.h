// Text records: making, copying, concatenating, checking and repairing them.
#pragma once

#include <string_view>

#include "gx/text/records.h"
#include "gx/text/string_compare.h"

// A source longer than the target holds (199, 63 or 95 characters), or with a length below 0, and a
// character outside 32..126 stop the program with invalid_string; only concatenations clip.
// --- makers: the record that holds `text` (0..199, 0..63, 0..95 characters)
gx_string_record_t gx_string(std::string_view text);
gx_name_record_t gx_name(std::string_view text);
gx_value_record_t gx_value(std::string_view text);

// --- copies: the target is replaced
void gx_copy_string(std::string_view chars, gx_string_record_t& string);
void gx_copy_const(std::string_view text, gx_string_record_t& string);
void gx_copy_line(const gx_string_record_t& from, gx_string_record_t& to);
void gx_copy_name(const gx_string_record_t& string, gx_name_record_t& name);
void gx_copy_value(const gx_string_record_t& string, gx_value_record_t& value);
void gx_name_string(const gx_name_record_t& name, gx_string_record_t& string);
void gx_value_string(const gx_value_record_t& value, gx_string_record_t& string);

// --- concatenations; what does not fit into 199 characters is left off without a message
void gx_concat_astr(std::string_view chars, gx_string_record_t& string);
void gx_concat_const(std::string_view text, gx_string_record_t& string);
void gx_concat_line(const gx_string_record_t& from, gx_string_record_t& to);
void gx_concat_name(const gx_name_record_t& name, gx_string_record_t& string);
void gx_concat_value(const gx_value_record_t& value, gx_string_record_t& string);
void gx_concat_sp(gx_string_record_t& string);  // one blank if the new length stays below 199

// Appends every part in turn, clipped at 199.
template <typename... Part>
void gx_concat_all(gx_string_record_t& string, const Part&... part) {
  (gx_concat_const(std::string_view(part), string), ...);
}

// --- checks and repairs: 0..199, 0..64 and 0..96 characters of printable ASCII, 32..126
// Silent when the record is sound; else debug lines and the fatal stop with invalid_string. Of a
// name and a value a bad length is set to 0 before the stop.
void gx_check_string(const gx_string_record_t& string);
void gx_check_name(gx_name_record_t& name);
void gx_check_value(gx_value_record_t& value);

// Repairs a typed or read line: length to 0..198, inner newlines to ";", a final newline and all
// from a 0 byte on dropped, other bytes outside 32..126 to blanks. Never stops.
void gx_rest_string(gx_string_record_t& string);
