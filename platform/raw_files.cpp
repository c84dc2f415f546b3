#include "platform/raw_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace {
template <typename Call>
auto again_after_signal(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}
}  // namespace

int xfopen(const char* path, int flags, mode_t mode) {
  return again_after_signal([&] { return open(path, flags, mode); });
}

int xfclose(int file) { return close(file); }

ssize_t xfread(int file, void* buffer, std::size_t length) {
  return again_after_signal([&] { return read(file, buffer, length); });
}

ssize_t xfwrite(int file, const void* buffer, std::size_t length) {
  return again_after_signal([&] { return write(file, buffer, length); });
}
