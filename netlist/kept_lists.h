// Which properties an expanded design keeps of its instances, pins and nets.
#pragma once

#include <array>
#include <cstdint>

#include "gx/text/records.h"

inline constexpr int kv_max_list = 16;  // entries of a PRIMitive, PARAMeter or PROPerty list

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
using kv_prop_list_t = kv_list_t<kv_prop_type_record_t>;

// The properties to keep; their order is that of the values of every stored object.
struct kv_kept_lists_t {
  kv_prop_list_t property_instance, property_pin, property_net;
};
