// Comparisons of texts. The case of a..z is ignored, other bytes compare as they are. A record
// with a length that no text has is reported in the trace and is equal to nothing; only gx_length
// stops.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "gx/text/records.h"

char gx_upper_case(char c);
std::string gx_upper(std::string_view text);
bool gx_iden(std::string_view a, std::string_view b);         // equality
bool gx_equal(std::string_view head, std::string_view text);  // `text` begins with `head`
bool gx_is_blank(std::string_view text);                      // blanks alone, or empty

// --- equality
bool gx_string_iden_string(const gx_string_record_t& a, const gx_string_record_t& b);
bool gx_const_iden_string(std::string_view text, const gx_string_record_t& string);
bool gx_iden_string(std::string_view chars, const gx_string_record_t& string);
bool gx_name_iden_string(const gx_name_record_t& name, const gx_string_record_t& string);
bool gx_name_iden_name(const gx_name_record_t& a, const gx_name_record_t& b);
bool gx_const_iden_name(std::string_view text, const gx_name_record_t& name);
bool gx_value_iden_value(const gx_value_record_t& a, const gx_value_record_t& b);
bool gx_const_iden_value(std::string_view text, const gx_value_record_t& value);

// --- the second begins with the first
bool gx_const_equal_string(std::string_view text, const gx_string_record_t& string);
bool gx_equal_string(std::string_view chars, const gx_string_record_t& string);
bool gx_name_equal_string(const gx_name_record_t& name, const gx_string_record_t& string);
bool gx_string_equal_name(const gx_string_record_t& string, const gx_name_record_t& name);
bool gx_value_equal_string(const gx_value_record_t& value, const gx_string_record_t& string);
bool gx_string_equal_value(const gx_string_record_t& string, const gx_value_record_t& value);

// Order; a proper prefix is less.
bool gx_is_less_than(const gx_string_record_t& a, const gx_string_record_t& b);

// Length of a zero-terminated text, 0..200; longer stops with invalid_string.
std::int32_t gx_length(const char* text);
