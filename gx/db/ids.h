// What names a file and an object.
#pragma once

#include <cstdint>

using gx_file_index_t = std::int8_t;  // 1..32; 0 = none
using gx_object_id_t = std::int16_t;  // 1..30000; 0 = none

inline constexpr int gx_max_files = 32;
inline constexpr int gx_max_object_id = 30000;
