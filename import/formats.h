// The formats that can be read: one record each, which the tool's choice and its help come from.
#pragma once

#include <span>
#include <string_view>

#include "import/drawing/drawing.h"
#include "import/drawing/source_file.h"

struct gxi_format_t {
  std::string_view name;   // of --format
  std::string_view title;  // for people
  bool (*is)(std::string_view head);
  gxi_design_t (*read)(const gxi_input_t& input);
};

std::span<const gxi_format_t> gxi_formats();
// nullptr: no format of that name, or none whose files begin so.
const gxi_format_t* gxi_format_named(std::string_view name);
const gxi_format_t* gxi_format_of(std::string_view head);
