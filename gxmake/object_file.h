// Files described object by object: the lines of a description to their record, the record to a
// file, and back from a file to such lines.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "gx/db/file/file_records.h"
#include "gxmake/builder.h"

// --- reading the lines. Each gives what is wrong with the line, "" when nothing is.
// Objects that a line further in may be under, outermost first.
struct gxm_open_object_t {
  std::size_t indent = 0;  // blanks before it
  int object = 0;
};
using gxm_open_objects_t = std::vector<gxm_open_object_t>;

// file DIRECTORY/BASE.gx_VERSION [FIELD=VALUE ...]
std::string gxm_read_file_line(std::span<const std::string> words, gxm_object_file_t& file);
// TYPE [@LABEL] [X,Y] [FIELD=VALUE ...], or "in @LABEL" before further children of an object
std::string gxm_read_object_line(std::span<const std::string> words, std::size_t indent,
                                 const gxm_source_t& source, gxm_object_file_t& file,
                                 gxm_open_objects_t& open);

// --- the file of the objects; nullptr, with a message, when they do not make a sound one
std::shared_ptr<gx_file_gene_recf_t> gxm_build_object_file(const gxm_object_file_t& described,
                                                           const gxm_options_t& options,
                                                           gxm_messages_t& messages);

// --- the lines that read back as this file; `path` is "DIRECTORY/BASE.gx_VERSION".
std::string gxm_source_text(const gx_file_gene_recf_t& file, std::string_view path);
