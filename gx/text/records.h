// The fixed-capacity text records of the package and the small geometry records.
// Records are plain data; views and makers of them stand here, operations in the other rooms
// of gx/text.
#pragma once

#include <cstdint>
#include <string_view>

// Longest string of the package is 199 characters; 200 is the first length that is refused.
inline constexpr std::int32_t gx_max_string_length = 200;

// `len` is the number of characters used, `char_` the characters, printable ASCII only (32..126).
// The byte after the last character is 0 wherever the array has room for it.
struct gx_string_record_t {
  std::int32_t len = 0;  // 0..199
  char char_[204] = {};
};

struct gx_name_record_t {
  std::int32_t len = 0;  // 0..64
  char char_[64] = {};
};

struct gx_value_record_t {
  std::int32_t len = 0;  // 0..96
  char char_[96] = {};
};

// The characters of a record. A length outside the array (a record not yet checked) gives the
// part that the array holds.
template <typename Record>
constexpr std::string_view gx_view(const Record& record) {
  const auto room = static_cast<std::int32_t>(sizeof record.char_);
  const std::int32_t len = record.len < 0 ? 0 : (record.len > room ? room : record.len);
  return {record.char_, static_cast<std::size_t>(len)};
}

// Screen position in pixels.
struct gx_point16_t {
  std::int16_t x = 0, y = 0;
  friend bool operator==(const gx_point16_t&, const gx_point16_t&) = default;
};

// Position in design units; y grows downwards on the screen.
struct gx_pointreal_t {
  std::int32_t x = 0, y = 0;
  friend bool operator==(const gx_pointreal_t&, const gx_pointreal_t&) = default;
};

struct gx_bounds16_t {
  std::int16_t xmin = 0, ymin = 0, xmax = 0, ymax = 0;
  friend bool operator==(const gx_bounds16_t&, const gx_bounds16_t&) = default;
};

struct gx_boundsreal_t {
  std::int32_t xmin = 0, ymin = 0, xmax = 0, ymax = 0;
  friend bool operator==(const gx_boundsreal_t&, const gx_boundsreal_t&) = default;
};

// A number typed by the user, times 100000 (five decimals).
using gx_real_t = std::int32_t;
inline constexpr gx_real_t gx_real_unit = 100000;
