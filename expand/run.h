// One expansion run: from the sheet at level 1 to the store, the design file and the listing.
#pragma once

#include <cstdint>

#include "expand/sheet_slots.h"

// What a run takes from the session and gives back to it.
struct kv_run_t {
  const kv_sheet_stack_t& sheets;  // level 1 is expanded; slots stay as they are
  bool gen_data = false;           // write the data listing too
  std::int16_t& expand_level;      // level being flattened
  std::int32_t& macro_level;       // macro whose sheet is being flattened
};

enum class kv_run_result {
  done,
  no_lists,         // a list that a run needs is empty
  no_sheet,         // no sheet at level 1
  too_many_levels,  // these three: the store is emptied, nothing was written
  path_too_long,
  design_too_large,
  write_failed,
};

// Flattens, checks the nets, fills general_info and writes the files. Answers in the list viewport.
kv_run_result kv_run_expansion(const kv_run_t& run);
