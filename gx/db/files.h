// GX files on disk: versions, link files, reading, encoding, and the slots. Versions are 1..32767;
// a path that is above 199 characters is refused, not cut.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "gx/db/file_records.h"
#include "gx/db/ids.h"

// --- names and link files (link_file.cpp)
// The current version of directory/base, as its link file says.
struct gx_file_version_t {
  bool found = false;        // a link file with a token exists, or one that cannot be read
  bool valid = false;        // its token carries a valid number and no name is too long
  std::string why;           // of one that is found and not valid: its path and what is wrong
  std::int16_t version = 1;  // 1 when not found
  gx_string_record_t file_pathname;
  gx_string_record_t link_pathname;
  gx_string_record_t link_value;  // "_1" when not found
};
gx_file_version_t gx_file_get_file_version(std::string_view dirname, std::string_view filetype);
// The names of version + 1.
gx_file_version_t gx_file_new_file_version(std::string_view dirname, std::string_view filetype,
                                           std::int16_t version);
// Link files are text: the first word of the first line, "_" and the version, and blanks. Those
// below
// "$VELMORAN" are found in the product directory.
// The first token of a link file, empty when its first line holds none; false when the file cannot
// be opened or is empty (which is counted as an error).
bool gx_read_gx_link(std::string_view link_path, gx_string_record_t& link_value);
// Replaces the link file as a whole; false, counted as an error, when that fails.
bool gx_add_gx_link(std::string_view link_path, std::string_view link_value);

// Whether the data file that a symbol path names is the current version.
struct gx_link_test_t {
  gx_string_record_t directory;
  bool link_found = false;  // the symbol reference is valid
  bool current = false;     // and names the current version
};
gx_link_test_t gx_check_gx_link(std::string_view data_path);

// A symbol path taken apart: "lib/nmos/symbol.gx_3" is "lib/nmos", "symbol", 3.
struct gx_symbol_path_t {
  gx_string_record_t directory, name;
  std::int16_t version = 0;
  bool error = false;  // no version digits
};
gx_symbol_path_t gx_get_path_n0version(std::string_view path);

// --- reading (record_codec.cpp)
// What a data file was refused for; `other` is told by the message alone.
enum class gx_load_fault : std::uint8_t {
  none,
  unreadable,   // file_open_invalid: missing, no right to read, no regular file
  revision,     // file_open_invalid: `revision` is what the file holds
  end_marker,   // file_open_invalid: the header does not end with -20
  record_kind,  // object_structure_invalid: `value` is the type read for `object_id`
  deleted,      // file_close_invalid: `object_id` is stored with the status `value`
  other,        // file_data_invalid: a text too long, an id or a chain that is not sound
};

// The outcome of reading one data file: the file, or the code it is refused with and a line for
// the user that names the file and what is wrong with it.
struct gx_load_t {
  std::shared_ptr<gx_file_gene_recf_t> file;
  gx_code code = gx_code::all_is_ok;
  std::string message;
  gx_load_fault fault = gx_load_fault::none;
  int object_id = 0;
  int value = 0;
  float revision = 0;
};
// Decodes the bytes of a data file; never stops the program. `name` is used in messages only.
gx_load_t gx_decode_file(std::string_view bytes, std::string_view name);
// Reads and decodes a data file; file_open_invalid when it cannot be read.
gx_load_t gx_load_file(std::string_view data_path);
// The same from a stream that is open for reading; nullptr: errno tells why it is not.
gx_load_t gx_load_stream(std::FILE* stream, std::string_view name);
// The bytes of a data file that holds these objects.
std::string gx_encode_file(const gx_file_gene_recf_t& file);

// --- soundness (reference_check.cpp)
// What is unsound in the references between the objects (tree links, instance chains, ends of
// segments): "" when every walk along them ends and meets the types it expects.
std::string gx_reference_fault(const gx_file_gene_recf_t& file);

// --- slots (file_slots.cpp), 1..32. A slot owns its file; a record of it holds until the slot is
// closed, reopened or saved.
// Opens the current version of directory/base into a new slot, or an empty file when there is no
// link file; every failure stops the program.
gx_file_index_t gx_file_open(std::string_view dirname, std::string_view filetype);
// The same, but a file whose data are not sound (gx_load_fault::other) gives 0 and the reason.
gx_file_index_t gx_file_open_sound(std::string_view dirname, std::string_view filetype,
                                   std::string& why);
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

// --- the listing (object_list.cpp)
// The dump of every object into "list_obj_file" of the file's directory; "", or the file's path and
// why it cannot be written.
std::string gx_object_list(gx_file_index_t file_index);
