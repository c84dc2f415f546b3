// A file mapped for reading, safe against what others do to the file meanwhile.
//
// A page that another process cuts off the file would end the program by a signal (SIGBUS) when it
// is read. While a file is mapped, a handler of that signal puts a page of zeros in its place and
// notes the loss; faults elsewhere go on to the handler that was there before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

class x_mapped_file {
 public:
  x_mapped_file() = default;
  x_mapped_file(x_mapped_file&& other) noexcept
      : bytes_(std::exchange(other.bytes_, nullptr)), size_(other.size_), place_(other.place_) {}
  x_mapped_file& operator=(x_mapped_file&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
    std::swap(place_, other.place_);
    return *this;
  }
  ~x_mapped_file();

  // Maps the first `size` bytes (more than 0). False when there is no memory for it, or when the
  // process has 8 files mapped already.
  bool map(int fd, std::size_t size);

  const std::uint8_t* bytes() const { return bytes_; }
  std::size_t size() const { return size_; }
  // The pages are not counted as memory of the process until they are read again.
  void release() const;
  // Little is read here and there: no pages around it are read ahead.
  void read_at_random() const;
  // A page was gone when it was read: what was read from it were zeros.
  bool is_cut() const;

 private:
  std::uint8_t* bytes_ = nullptr;
  std::size_t size_ = 0;
  std::size_t place_ = 0;  // among the mapped files of the process
};
