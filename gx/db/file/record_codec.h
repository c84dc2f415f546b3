// The bytes of a GX data file, read and written by one description of its records
// (gx/db/file/record_tables.h).
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "gx/db/file/file_records.h"

// What a data file was refused for; `other` is reported by the message alone.
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
// The same from a stream that is open for reading; nullptr: errno says why it is not.
gx_load_t gx_load_stream(std::FILE* stream, std::string_view name);
// The bytes of a data file that holds these objects.
std::string gx_encode_file(const gx_file_gene_recf_t& file);
