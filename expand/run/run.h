// One expansion run: from a sheet and the user's wishes to a design, and from there to the design
// file and the listing.
#pragma once

#include <chrono>
#include <cstdint>

#include "expand/design.h"
#include "expand/origins.h"
#include "expand/sheet/sheet_slots.h"
#include "gx/db/file/file_records.h"

// How far a run is.
struct kv_progress_t {
  double seconds = 0;                  // since its start
  std::int64_t sheets = 0, insts = 0;  // visited, stored (leaf instances)
  std::int64_t all_sheets = 0;         // that it will visit, known before the first visit
  bool ended = false;                  // the last call for a run that was announced
};

// Who watches a run: called while it walks the hierarchy, and once more with `ended` when the walk
// is over, if it was called before. False ends the run in order ("# RUN stopped"), with an empty
// design.
using kv_run_watcher_t = bool (*)(const kv_progress_t& progress);

struct kv_run_t {
  const kv_setup_t& setup;
  kv_design_t& design;             // emptied and filled
  const kv_sheet_stack_t& sheets;  // level 1 is expanded; slots stay as they are
  std::int16_t& expand_level;      // level being flattened
  std::int32_t& macro_level;       // macro whose sheet is being flattened
  kv_run_watcher_t watcher = nullptr;
  std::chrono::milliseconds period{200};  // from the start to the first call, and between calls
  bool to_the_end = false;                // a sheet is not left after 30 errors
  kv_origins_t* origins = nullptr;        // emptied and filled, when given
  bool keeps_part = false;                // of a run that ended early: what it had made by then
};

enum class kv_run_result {
  done,
  no_lists,         // a list that a run needs is empty
  no_sheet,         // no sheet at level 1
  too_many_levels,  // from here to `stopped` nothing was written and, unless the part is kept,
                    // the design is emptied
  path_too_long,
  design_too_large,
  stopped,  // as the watcher asked
  write_failed,
};

// Flattens, checks the nets and fills general_info. What is wrong is reported to the list.
kv_run_result kv_expand(const kv_run_t& run);
// The same for sheets that were set up, and may be analysed already, for `setup`, and for one run
// only; the stack is not looked at.
kv_run_result kv_expand_sheets(const kv_run_t& run, const std::shared_ptr<kv_sheets_t>& sheets);

// The same, and writes the image to an open file and, when asked for, the listing "kivo_data" into
// the directory of the sheet.
kv_run_result kv_run_expansion(const kv_run_t& run, int designfile, bool gen_data);
