// What the user wishes of a run: the PRIMitive, PARAMeter and PROPerty lists, the time step and the
// size of the store. Commands fill it; a run only reads it.
#pragma once

#include <array>
#include <cstdint>

#include "expand/blocked_array.h"
#include "gx/text/records.h"

inline constexpr int kv_max_list = 16;  // entries of a PRIMitive, PARAMeter or PROPerty list

struct kv_prim_in_record_t {
  gx_string_record_t name, nvalue;  // nvalue empty: any value
};
struct kv_param_in_record_t {
  gx_string_record_t name;
  float nvalue[3] = {};
};
struct kv_prop_type_record_t {
  gx_string_record_t name, prop_type;  // the first letter of prop_type is I, T, R or S, either case
};
template <typename Entry>
struct kv_list_t {
  std::int32_t count = 0;
  std::array<Entry, kv_max_list> entry;
  const Entry* begin() const { return entry.data(); }
  const Entry* end() const { return entry.data() + count; }
};

// The properties to keep; their order is that of the values of every stored object.
struct kv_kept_lists_t {
  kv_list_t<kv_prop_type_record_t> property_instance, property_pin, property_net;
};

struct kv_setup_t : kv_kept_lists_t {
  kv_list_t<kv_prim_in_record_t> primitive;
  kv_list_t<kv_param_in_record_t> parameter;
  float time_step = 0;
  std::int32_t store_size =
      kv_start_records;  // records of each kind, kv_min_records..kv_max_records
};
