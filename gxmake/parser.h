// From the text of a description to its records.
#pragma once

#include <filesystem>
#include <list>
#include <string>

#include "gxmake/description.h"

// A design being read. Files may be read one after the other into the same design.
struct gxm_input_t {
  gxm_design_t design;
  gxm_messages_t messages;       // empty when all was understood
  std::list<std::string> files;  // the names that sources point to
};

// Reads a text; `name` is used in messages, and is where relative "include" names start.
void gxm_parse_text(std::string_view text, std::string_view name, gxm_input_t& input);
// Reads a file and what it includes. A file read before is not read again.
void gxm_parse_file(const std::filesystem::path& path, gxm_input_t& input);
