// Names and versions of GX files. A link file says which version of a base name is the current one.
// Versions are 1..32767; a path above 199 characters is refused, not cut.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "gx/text/records.h"

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
// below "$VELMORAN" are found in the product directory.
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
