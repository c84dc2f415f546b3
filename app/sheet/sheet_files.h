// Opening the sheets and symbols that navigation shows, each into a slot that is used again.
#pragma once

#include <string>
#include <string_view>

#include "gx/db/ids.h"

enum class kv_opened { yes, missing, damaged };

// Opens directory/filetype into the slot, or into a new one when `slot` is 0 (then set). A file
// that is missing, damaged or has no free slot leaves all as it was; `why` says what is wrong with
// a damaged one.
kv_opened kv_open_in_slot(gx_file_index_t& slot, std::string_view directory,
                          std::string_view filetype, std::string& why);

// A slot whose new contents cannot be shown is left by the context viewport, which goes back to
// the sheet in the edit viewport.
void kv_leave_slot(gx_file_index_t slot);
