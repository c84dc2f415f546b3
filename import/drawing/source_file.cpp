#include "import/drawing/source_file.h"

#include <cerrno>
#include <cstdint>
#include <stdexcept>

#include "platform/files.h"

void gxi_refuse(const gxm_source_t& source, std::string_view what) {
  gxm_messages_t message;
  gxm_complain(message, source, std::string(what));
  throw std::runtime_error(message.front());
}

std::string gxi_read_source(const std::filesystem::path& path) {
  constexpr std::size_t largest = 256U << 20U;
  auto bytes = gxi_read_head(path, largest + 1);
  if (bytes.size() > largest) gxi_refuse({path.native(), 1}, "is larger than 256 MB");
  return bytes;
}

std::string gxi_read_head(const std::filesystem::path& path, std::size_t length) {
  std::string bytes;
  if (!x_read_regular(path.string(), bytes, length))
    gxi_refuse({path.native(), 1}, "cannot be read: " + x_why_unread(errno));
  // The mark of UTF-8 that some editors set at the start is none of the text.
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
  return bytes;
}
