// What the user wishes of a run: the PRIMitive, PARAMeter and PROPerty lists, the time step and the
// size of the store. Commands fill it; a run only reads it.
#pragma once

#include <cstdint>

#include "gx/text/records.h"
#include "netlist/blocked_array.h"
#include "netlist/kept_lists.h"

struct kv_prim_in_record_t {
  gx_string_record_t name, nvalue;  // nvalue empty: any value
};
struct kv_param_in_record_t {
  gx_string_record_t name;
  float nvalue[3] = {};
};

struct kv_setup_t : kv_kept_lists_t {
  kv_list_t<kv_prim_in_record_t> primitive;
  kv_list_t<kv_param_in_record_t> parameter;
  float time_step = 0;
  std::int32_t store_size =
      kv_start_records;  // records of each kind, kv_min_records..kv_max_records
};
