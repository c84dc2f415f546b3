// Text files, the product directory and shell commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "gx/text/records.h"

// Opens a text file: mode 'R' (read) or 'W' (write, truncating), either case. A path that begins
// with "$VELMORAN" lies under the product directory. Only a regular file is read, and none is
// written through a symbolic link. nullptr when it cannot be opened (no message: the caller
// decides; errno says why); the caller owns the stream. Waits 10 ms between its probe and the
// opening, but not in a batch.
std::FILE* gx_popen_file(std::string_view path, char mode, bool rdonly);

// The same for the start-up files; says on standard output what cannot be opened.
std::FILE* gx_popen_filei(std::string_view path, char mode, bool rdonly);

// One line, at most 198 characters; bytes outside 32..126 become blanks. False at the end of the
// file when nothing was read.
bool gx_read_one_line(std::FILE* file, gx_string_record_t& string);

inline constexpr std::string_view gx_product_word = "$VELMORAN";  // before a path of the product
// The product directory: environment variable VELMORAN, or "/users/velmoran" when unset or empty.
gx_string_record_t gx_get_velmoran();

// The longest path that is opened.
inline constexpr std::size_t gx_max_path = 192;
// The path with a leading "$VELMORAN" replaced by the product directory, cut to gx_max_path.
gx_string_record_t gx_resolve_path(std::string_view path);

// Runs the string as a shell command (outer quotes removed); the result is ignored. `stop_asked`
// is asked meanwhile, true ends it.
void gx_system(const gx_string_record_t& command, bool (*stop_asked)());
