// The file is rewritten in place. Its header is zeroed first and written last, so that a file whose
// writing failed on the way is never taken for a whole one. A program that is killed before the
// first buffer is encoded leaves the older image.
#include "expand/output/design_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <memory>
#include <span>
#include <thread>
#include <type_traits>

#include "netlist/design_records.h"
#include "platform/files.h"

namespace {

constexpr std::size_t header_size = kv_layout<kv_general_info_record_t>::size;

bool write_at(int fd, std::span<const std::uint8_t> bytes, off_t offset) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(fd, bytes.data(), bytes.size(), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written == 0) errno = ENOSPC;
    if (written <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    offset += written;
  }
  return true;
}

// The bytes of the image after its header, gathered in a buffer that stays in the processor's
// cache; a larger one would cost fresh pages, a fault each.
class image_writer {
 public:
  explicit image_writer(int fd) : fd_(fd), buffer_(new std::uint8_t[capacity]) {}

  // Room for the next `n` bytes (at most a block of characters).
  std::uint8_t* room(std::size_t n) {
    if (used_ + n > capacity) flush();
    used_ += n;
    return buffer_.get() + used_ - n;
  }
  bool flush() {
    if (ok_ && offset_ == header_size)
      ok_ = write_at(fd_, std::array<std::uint8_t, header_size>{}, 0);
    ok_ = ok_ && write_at(fd_, {buffer_.get(), used_}, offset_);
    offset_ += static_cast<off_t>(used_);
    used_ = 0;
    if (!ok_) return false;  // what the system said is reported
    // The disk begins while the next records are encoded.
    if (offset_ - sent_ >= sent_at_once) {
      ::sync_file_range(fd_, sent_, offset_ - sent_, SYNC_FILE_RANGE_WRITE);
      sent_ = offset_;
    }
    return ok_;
  }
  bool ok() const { return ok_; }
  off_t length() const { return offset_ + static_cast<off_t>(used_); }

 private:
  static constexpr std::size_t capacity = 1 << 16;
  static constexpr off_t sent_at_once = 1 << 20;
  int fd_;
  std::unique_ptr<std::uint8_t[]> buffer_;
  std::size_t used_ = 0;
  off_t offset_ = header_size;
  off_t sent_ = 0;  // all before it is on its way to the disk
  bool ok_ = true;
};

template <typename Record>
void write_records(image_writer& out, std::span<const Record> records) {
  if constexpr (std::is_same_v<Record, char>) {
    std::copy(records.begin(), records.end(), out.room(records.size()));
  } else {
    for (const Record& record : records) {
      kv_encode_record(record, out.room(kv_layout<Record>::size));
    }
  }
}

template <typename Record>
void write_array(image_writer& out, const kv_blocked_t<Record>& array) {
  for (std::int32_t block = 0; out.ok(); ++block) {
    const auto records = array.in_block(block);
    if (records.empty()) return;
    write_records<Record>(out, records);
  }
}

bool write_parts(image_writer& out, const kv_design_t& design) {
  for (const kv_list_part_t& part : kv_list_parts) {
    const auto& list = design.kept.*part.list;
    write_records(out, std::span(list.begin(), list.end()));
  }
  kv_for_each_part([&](const auto& part) { write_array(out, design.*part.array); });
  return out.flush();
}

// Makes the file begin with the header, which makes it valid, and end at `length`. Readers go by
// the counts, so bytes of an older image after it would not mislead them.
bool finish_image(const kv_design_t& design, int fd, off_t length) {
  std::array<std::uint8_t, header_size> header;
  kv_encode_record(design.general_info, header.data());
  if (!write_at(fd, header, 0)) return false;
  return ::ftruncate(fd, length) == 0;
}

// The first byte of a design file is locked for reading by each session that holds it.
struct flock first_byte(short type) {
  struct flock range {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_len = 1;
  return range;
}

}  // namespace

int kv_open_output(const std::string& path, int flags, std::string& why) {
  constexpr mode_t rights = 0660;
  int fd = -1;
  do {  // without O_NONBLOCK the opening of a FIFO would wait for its other end
    fd = ::open(path.c_str(), flags | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, rights);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) {
    why = x_why_unwritten(errno);
    return -1;
  }
  struct stat file;
  if (::fstat(fd, &file) == 0 && (S_ISREG(file.st_mode) || S_ISCHR(file.st_mode))) return fd;
  ::close(fd);
  why = "is no file";
  return -1;
}

int kv_open_design_file(const std::string& path, std::string& why) {
  const int fd = kv_open_output(path, O_RDWR, why);
  if (fd < 0) return -1;
  struct flock range = first_byte(F_RDLCK);
  ::fcntl(fd, F_SETLK, &range);  // a file system without locks does without
  return fd;
}

int kv_other_session(int fd) {
  struct flock range = first_byte(F_WRLCK);
  return ::fcntl(fd, F_GETLK, &range) == 0 && range.l_type != F_UNLCK ? range.l_pid : 0;
}

kv_design_lock::kv_design_lock(int fd) : fd_(fd), held_(true) {
  constexpr std::chrono::milliseconds between_tries{10};
  for (int tries = 100; ::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;) {
    if (--tries == 0) {
      held_ = false;
      return;
    }
    std::this_thread::sleep_for(between_tries);
  }
}
kv_design_lock::~kv_design_lock() {
  if (held_) ::flock(fd_, LOCK_UN);
}

bool kv_write_image(const kv_design_t& design, int fd) {
  image_writer image(fd);
  if (!write_parts(image, design)) return false;
  if (::fdatasync(fd) != 0 && errno != EINVAL) return false;  // EINVAL: nothing that is on a disk
  return finish_image(design, fd, image.length());
}

bool kv_write_image_header(const kv_design_t& design, int fd) {
  return finish_image(design, fd, header_size);
}
