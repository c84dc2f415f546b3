// What a reader is asked to read, its files, and how it refuses them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "gxmake/description.h"

// Throws std::runtime_error "FILE:LINE: what".
[[noreturn]] void gxi_refuse(const gxm_source_t& source, std::string_view what);

// The bytes of a regular file, or its first ones; throws std::runtime_error
// "PATH:1: cannot be read: why", also for a directory, a pipe or a device.
std::string gxi_read_source(const std::filesystem::path& path);
std::string gxi_read_head(const std::filesystem::path& path, std::size_t length);

struct gxi_input_t {
  std::vector<std::filesystem::path> pages;      // the top sheet, and its further pages
  std::vector<std::filesystem::path> libraries;  // where symbols are looked for first
};
