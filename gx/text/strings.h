// Checks, repairs, copies, concatenations and comparisons of the text records.
// A length or character that a record cannot hold stops the program with invalid_string.
#pragma once

#include <cstdint>
#include <string_view>

#include "gx/text/records.h"

// --- checks (silent when sound; else debug lines and the fatal stop)
void gx_check_string(const gx_string_record_t& string);
void gx_check_name(gx_name_record_t& name);     // resets a bad length to 0 before it stops
void gx_check_value(gx_value_record_t& value);  // likewise

// Repairs a typed or read line: length to 0..198, inner newlines to ";", a final newline and all
// from a 0 byte on dropped, other bytes outside 32..126 to blanks.
void gx_rest_string(gx_string_record_t& string);

// --- makers: the record that holds `text` (0..199, 0..63, 0..95 characters)
gx_string_record_t gx_string(std::string_view text);
gx_name_record_t gx_name(std::string_view text);
gx_value_record_t gx_value(std::string_view text);

// --- copies
void gx_copy_string(std::string_view chars, gx_string_record_t& string);
void gx_copy_const(std::string_view text, gx_string_record_t& string);
void gx_copy_line(const gx_string_record_t& from, gx_string_record_t& to);
void gx_copy_name(const gx_string_record_t& string, gx_name_record_t& name);
void gx_copy_value(const gx_string_record_t& string, gx_value_record_t& value);
void gx_name_string(const gx_name_record_t& name, gx_string_record_t& string);
void gx_value_string(const gx_value_record_t& value, gx_string_record_t& string);

// --- concatenations; the result is clipped at 199 characters without a message
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

// --- comparisons; the case of a..z is ignored, other bytes compare as they are
char gx_upper_case(char c);
bool gx_iden(std::string_view a, std::string_view b);         // equality
bool gx_equal(std::string_view head, std::string_view text);  // `text` begins with `head`
bool gx_string_iden_string(const gx_string_record_t& a, const gx_string_record_t& b);
bool gx_const_iden_string(std::string_view text, const gx_string_record_t& string);
bool gx_iden_string(std::string_view chars, const gx_string_record_t& string);
bool gx_name_iden_string(const gx_name_record_t& name, const gx_string_record_t& string);
bool gx_name_iden_name(const gx_name_record_t& a, const gx_name_record_t& b);
bool gx_const_iden_name(std::string_view text, const gx_name_record_t& name);
bool gx_value_iden_value(const gx_value_record_t& a, const gx_value_record_t& b);
bool gx_const_iden_value(std::string_view text, const gx_value_record_t& value);
bool gx_const_equal_string(std::string_view text, const gx_string_record_t& string);
bool gx_equal_string(std::string_view chars, const gx_string_record_t& string);
bool gx_name_equal_string(const gx_name_record_t& name, const gx_string_record_t& string);
bool gx_string_equal_name(const gx_string_record_t& string, const gx_name_record_t& name);
bool gx_value_equal_string(const gx_value_record_t& value, const gx_string_record_t& string);
bool gx_string_equal_value(const gx_string_record_t& string, const gx_value_record_t& value);
// Case-insensitive order; a proper prefix is less.
bool gx_is_less_than(const gx_string_record_t& a, const gx_string_record_t& b);

// Length of a zero-terminated text, 0..200; longer stops with invalid_string.
std::int32_t gx_length(const char* text);
