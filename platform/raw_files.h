// Raw file descriptors.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <utility>

// The system calls open, close, read and write; a call broken off by a signal is made again.
int xfopen(const char* path, int flags, mode_t mode);
int xfclose(int file);
ssize_t xfread(int file, void* buffer, std::size_t length);
ssize_t xfwrite(int file, const void* buffer, std::size_t length);

// Owns one descriptor; -1 is none.
class x_descriptor {
 public:
  explicit x_descriptor(int file = -1) : file_(file) {}
  x_descriptor(x_descriptor&& other) noexcept : file_(other.release()) {}
  x_descriptor& operator=(x_descriptor&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~x_descriptor() { reset(); }

  int get() const { return file_; }
  explicit operator bool() const { return file_ >= 0; }
  int release() { return std::exchange(file_, -1); }
  void reset(int file = -1) {
    if (const int old = std::exchange(file_, file); old >= 0) xfclose(old);
  }

 private:
  int file_;
};
