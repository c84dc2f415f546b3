// The levels of the hierarchy under the edit viewport: which sheet each holds, which one is shown,
// and the simulation path of that one. VIEw DOWn, VIEw UP and what jumps to a place move by this.
#pragma once

#include <string>
#include <string_view>

#include "expand/sheet/sheet_slots.h"
#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"

// --- opening the sheets and symbols that navigation shows, each into a slot that is used again
enum class kv_opened { yes, missing, damaged };

// Opens directory/filetype into the slot, or into a new one when `slot` is 0 (then set). A file
// that is missing, damaged or has no free slot leaves all as it was; `why` says what is wrong with
// a damaged one.
kv_opened kv_open_in_slot(gx_file_index_t& slot, std::string_view directory,
                          std::string_view filetype, std::string& why);

// A slot whose new contents cannot be shown is left by the context viewport, which goes back to
// the sheet in the edit viewport.
void kv_leave_slot(gx_file_index_t slot);

// --- levels
bool kv_is_level(int level);
// The place of a level, 1..28.
kv_file_record_t& kv_at_level(int level);

// The directory of the sheet that an instance stands for; empty when its symbol's path has no
// version.
gx_string_record_t kv_sheet_directory(const gx_file_gene_recf_t& file, int inst);

// Opens the sheet of a directory at a level, for kv_stand_at. Anything but `yes`: it is missing,
// damaged or no sheet; `why` says what is wrong with it, `fault` that it was read and is no sheet.
// A sheet that was open at that level before may be gone then.
struct kv_level_open_t {
  kv_opened opened = kv_opened::missing;
  bool fault = false;
  std::string why;
};
kv_level_open_t kv_open_level(int level, const gx_string_record_t& directory);

// Makes a level with an open sheet the current one, under that simulation path; draws nothing.
void kv_stand_at(int level, const gx_string_record_t& path);
// Draws the sheet of the current level whole.
void kv_show_level();

// Called whenever another sheet is to be shown, before it is drawn, and after a run; none at first.
using kv_level_follower_t = void (*)();
void kv_set_level_follower(kv_level_follower_t follower);
void kv_follow_sheet();
// Calls it and, if there is one, draws the two viewports again.
void kv_follow_run();
