// The status bits of the expanded records, which the commands on the netlist set and read. Another
// kind than the three has no bits: reading gives false, setting does nothing.
#pragma once

#include "expand/store.h"

enum class kv_record_kind : std::int16_t { inst = 0, pin = 1, net = 2 };

enum kv_record_flag : std::int16_t {
  kv_flag_selected = 1,
  kv_flag_range_a = 2,
  kv_flag_range_b = 4,
  kv_flag_range_c = 8,
};

bool kv_inq_record_flag(std::int32_t index, kv_record_kind kind, kv_record_flag flag);
void kv_set_record_flag(std::int32_t index, kv_record_kind kind, kv_record_flag flag, bool on);

inline bool kv_inq_object_selected(std::int32_t index, kv_record_kind kind) {
  return kv_inq_record_flag(index, kind, kv_flag_selected);
}
inline bool kv_inq_object_in_range_a(std::int32_t index, kv_record_kind kind) {
  return kv_inq_record_flag(index, kind, kv_flag_range_a);
}
inline bool kv_inq_object_in_range_b(std::int32_t index, kv_record_kind kind) {
  return kv_inq_record_flag(index, kind, kv_flag_range_b);
}
inline bool kv_inq_object_in_range_c(std::int32_t index, kv_record_kind kind) {
  return kv_inq_record_flag(index, kind, kv_flag_range_c);
}
inline void kv_set_object_selected(std::int32_t index, kv_record_kind kind, bool on) {
  kv_set_record_flag(index, kind, kv_flag_selected, on);
}
inline void kv_set_object_in_range_a(std::int32_t index, kv_record_kind kind, bool on) {
  kv_set_record_flag(index, kind, kv_flag_range_a, on);
}
inline void kv_set_object_in_range_b(std::int32_t index, kv_record_kind kind, bool on) {
  kv_set_record_flag(index, kind, kv_flag_range_b, on);
}
inline void kv_set_object_in_range_c(std::int32_t index, kv_record_kind kind, bool on) {
  kv_set_record_flag(index, kind, kv_flag_range_c, on);
}
