#include "import/drawing/source_file.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

std::string gxi_read_source(const std::filesystem::path& path) {
  std::error_code none;
  std::ifstream in(path, std::ios::binary);
  if (!in || !std::filesystem::is_regular_file(path, none))
    throw std::runtime_error(path.string() + ":1: cannot be read");
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return std::move(bytes).str();
}
