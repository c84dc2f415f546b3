// The part of kv_pext about expansion runs.
#pragma once

#include <cstdint>

struct kv_run_state_t {
  bool gen_data = false;          // GENerate DATa ON
  std::int16_t expand_level = 0;  // nesting of sheets
  std::int32_t macro_level = 0;   // nesting of macros
};
