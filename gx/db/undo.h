// The undo list: every change that an editor may want to take back, grouped into steps.
#pragma once

#include "gx/db/file_records.h"

enum class gx_undo_op : std::int16_t {
  start = 0,
  step = 1,
  deleted = 2,
  undeleted = 3,
  selected = 4,
  unselected = 5,
  created = 6,
  switches = 12,
  bus = 23,
};

// Starts the list (nothing is recorded before) and takes the check state of the file.
void gx_undo_init(gx_file_index_t file_index);
// Opens a new step: the following entries are taken back together.
void gx_undo_define_new_step();
// Records one change of one object; nothing while there is no list.
void gx_undo_put_object(gx_file_index_t file_index, int id, gx_undo_op operation);
// Replay one step; false when there is none left.
bool gx_undo_restore_one_step();
bool gx_redo_restore_one_step();
