// What a reader is asked to read.
#pragma once

#include <filesystem>
#include <vector>

struct gxi_input_t {
  std::vector<std::filesystem::path> pages;      // the top sheet, and its further pages
  std::vector<std::filesystem::path> libraries;  // where symbols are looked for first
};
