// What the library holds: the loaded design and its open files.
#pragma once

#include <cstdio>

#include "expand/store.h"
#include "kvi/kvi.h"

struct kvi_state_t {
  kv_defref_exp_rec_t store;   // open_file_ok: a design is loaded
  std::FILE* debug = nullptr;  // "debug_kvdfi"
  std::int32_t kv_ner = 0;     // errors and warnings of the run that wrote the design file
  std::int32_t kv_nwa = 0;
};
extern kvi_state_t kvi_state;

// A line on the trace.
void kvi_debug(const char* text);

// The characters of a string of the loaded design; "" for 0.
inline std::string_view kvi_text(std::int32_t string_index) {
  auto& store = kvi_state.store;
  if (!store.strings.holds(string_index)) return {};
  const kv_string_record_t& record = store.strings[string_index];
  if (record.len == 0) return {};
  return {&store.chars[record.index], static_cast<std::size_t>(record.len)};
}
