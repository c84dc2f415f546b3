// The slots of open files, 1..32. A slot owns its file; a record of it holds until the slot is
// closed, reopened or saved.
#pragma once

#include <string>
#include <string_view>

#include "gx/db/ids.h"

// Opens the current version of directory/base into a new slot, or an empty file when there is no
// link file; every failure stops the program.
gx_file_index_t gx_file_open(std::string_view dirname, std::string_view filetype);
// The same, but a file that is there and cannot be used gives 0 and the reason, and takes no slot.
gx_file_index_t gx_file_try_open(std::string_view dirname, std::string_view filetype,
                                 std::string& why);
// Points a slot at the current version of another file; false when that has no link file (the slot
// is then empty). The same file already there stays as it is.
bool gx_file_reopen(gx_file_index_t file_index, std::string_view dirname,
                    std::string_view filetype);
// The same, but leaves the slot as it was when the file is missing or cannot be used.
bool gx_file_try_reopen(gx_file_index_t file_index, std::string_view dirname,
                        std::string_view filetype, std::string& why);
// Closes the slot; nothing is saved (gx/edit/file_save.h does).
void gx_file_close(gx_file_index_t file_index);
// Stops the program when the slot's number is none or the package is not initialised.
void gx_check_file_to_close(gx_file_index_t file_index);
// A new slot for the data file of a save, opened for writing and holding an empty file.
gx_file_index_t gx_file_create_bye(std::string_view data_path);
// Fills the slot with an empty file.
void gx_file_create_new(gx_file_index_t file_index);
