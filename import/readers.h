// The formats that can be read. A reader gives a whole design or throws std::runtime_error with one
// line "FILE:LINE: what is wrong"; what it only cannot keep is in the design's warnings.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "import/drawing.h"

struct gxi_input_t {
  std::vector<std::filesystem::path> pages;      // the top sheet, and its further pages
  std::vector<std::filesystem::path> libraries;  // where symbols are looked for first
};

gxi_design_t gxi_read_xschem(const gxi_input_t& input);
gxi_design_t gxi_read_lepton(const gxi_input_t& input);

// Whether the head of a file looks like the format.
bool gxi_is_xschem(std::string_view text);
bool gxi_is_lepton(std::string_view text);
