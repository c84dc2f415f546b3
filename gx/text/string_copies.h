// Making, copying and concatenating the text records.
//
// A source longer than the target holds (199, 63 or 95 characters), or with a length below 0, and a
// character outside 32..126 stop the program with invalid_string; only concatenations clip.
#pragma once

#include <string_view>

#include "gx/text/records.h"

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
