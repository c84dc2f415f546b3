// Loads a design file into a store. Used by the library and by the dump tool.
#pragma once

#include "expand/store.h"

enum class kvi_load_result {
  loaded,
  too_short,  // ends before what its header announces
  damaged     // no design file, not written to its end, or an impossible count, length or index
};

// Reads the open file from its start. A loaded store is sound: every index is 0 or that of a
// record, ranges of pins and properties lie within their arrays, chains end. Otherwise the store
// holds nothing.
kvi_load_result kvi_load_design(int fd, kv_defref_exp_rec_t& store);
