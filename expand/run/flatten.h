// Flattening: one visit of a sheet writes its nets and leaf instances to the store and visits the
// sheets of its hierarchical instances.
#pragma once

#include "expand/run/flatten_state.h"

// The instance through which a sheet is entered; none for the top sheet.
struct kv_entry_t {
  kv_sheet_t* sheet = nullptr;  // that holds the instance
  kv_sheet_inst_t* inst = nullptr;
  std::size_t flats = 0;  // where its sheet's flat nets begin
};

// Flattens a sheet under run.path. run.end is set when the run cannot go on.
void kv_process_inst_of_sheet(kv_flatten_t& run, kv_sheet_t& sheet, const kv_entry_t& entry,
                              std::int16_t level, std::int8_t timing_index);
