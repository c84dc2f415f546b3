// Numbers to text and text to numbers, and small numeric helpers.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "gx/text/records.h"

// What a text held: the value (for an error the value read so far) and whether it was refused.
template <typename Number>
struct gx_parsed {
  Number value = 0;
  bool error = false;
};

// --- decimal, "-" for negatives, no padding; 0 gives "0"
void gx_int16_to_string(std::int16_t v, gx_string_record_t& string);
void gx_int32_to_string(std::int32_t v, gx_string_record_t& string);

// --- unsigned decimal (hexadecimal for "h"); blanks anywhere are skipped; any other character
//     ends the scan with an error; a number too large for the type is an error too
gx_parsed<std::int16_t> gx_string_to_int16(std::string_view text);
gx_parsed<std::int32_t> gx_string_to_int32(std::string_view text);
gx_parsed<std::int32_t> gx_stringh_to_int32(std::string_view text);

// --- I.DD: integer digits, a point, two decimals; 0 gives "0.0"
void gx_real_to_string(gx_real_t real, gx_string_record_t& string);
void gx_shortreal_to_string(float shortreal, gx_string_record_t& string);

// --- optional "-", digits, points; a blank ends the number; anything else is an error
gx_parsed<gx_real_t> gx_string_to_real(std::string_view text);
gx_parsed<float> gx_string_to_shortreal(std::string_view text);

// The whole text as a number: "-" for negatives, no "+", no blanks; nothing when it is none or does
// not fit the type.
template <typename Number>
std::optional<Number> gx_whole_number(std::string_view text) {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return value;
}

inline float gx_float(std::int32_t v) { return static_cast<float>(v); }
inline float gx_minr(float a, float b) { return std::min(a, b); }
inline float gx_maxr(float a, float b) { return std::max(a, b); }
inline std::int16_t gx_mini16(std::int16_t a, std::int16_t b) { return std::min(a, b); }
inline std::int16_t gx_maxi16(std::int16_t a, std::int16_t b) { return std::max(a, b); }
inline std::int32_t gx_mini32(std::int32_t a, std::int32_t b) { return std::min(a, b); }
inline std::int32_t gx_maxi32(std::int32_t a, std::int32_t b) { return std::max(a, b); }
