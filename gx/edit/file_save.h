// Closing a slot by saving it as a new version. For editors; KIVO itself only reads and closes with
// gx_file_close(file_index) of gx/db/file/file_slots.h.
#pragma once

#include "gx/db/ids.h"

// Saves the file of the slot as its next version when `save_it`, else just closes it. A save that
// fails leaves the version before as the current one and stops the program.
void gx_file_close(gx_file_index_t file_index, bool save_it);
