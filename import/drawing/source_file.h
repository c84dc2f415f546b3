// The files that a reader reads.
#pragma once

#include <filesystem>
#include <string>

// The bytes of a file; throws std::runtime_error "PATH:1: cannot be read".
std::string gxi_read_source(const std::filesystem::path& path);
