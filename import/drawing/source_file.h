// The files that a reader reads, and how it refuses them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "gxmake/description.h"

// Throws std::runtime_error "FILE:LINE: what".
[[noreturn]] void gxi_refuse(const gxm_source_t& source, std::string_view what);

// The bytes of a regular file, or its first ones; throws std::runtime_error
// "PATH:1: cannot be read: why", also for a directory, a pipe or a device.
std::string gxi_read_source(const std::filesystem::path& path);
std::string gxi_read_head(const std::filesystem::path& path, std::size_t length);
