// The sheet stack that navigation and expansion share: level k (1..28) is entry k - 1.
#pragma once

#include <array>

#include "gx/db/ids.h"
#include "gx/text/records.h"

inline constexpr int kv_max_levels = 28;

struct kv_file_record_t {
  gx_file_index_t file_index = 0;  // 0: no open file at this level
  gx_string_record_t file_path;    // directory given to gx_file_open
};
using kv_sheet_stack_t = std::array<kv_file_record_t, kv_max_levels>;
