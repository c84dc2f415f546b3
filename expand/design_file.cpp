// Writes the design file: the store's image, and beside it the data listing.
//
// The file is rewritten in place. Its header is zeroed first and written last, so that a file
// whose writing failed on the way is never taken for a whole one.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <span>
#include <string>
#include <type_traits>

#include "expand/data_listing.h"
#include "expand/debug.h"
#include "expand/design_records.h"
#include "expand/output.h"
#include "expand/store.h"
#include "gx/text/message_list.h"
#include "gx/text/text_files.h"

namespace {

constexpr std::size_t header_size = kv_layout<kv_general_info_record_t>::size;

bool write_at(int fd, std::span<const std::uint8_t> bytes, off_t offset) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(fd, bytes.data(), bytes.size(), offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    offset += written;
  }
  return true;
}

// The bytes of the image behind its header, gathered in a large buffer.
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
    ok_ = ok_ && write_at(fd_, {buffer_.get(), used_}, offset_);
    offset_ += static_cast<off_t>(used_);
    used_ = 0;
    return ok_;
  }
  bool ok() const { return ok_; }
  off_t length() const { return offset_ + static_cast<off_t>(used_); }

 private:
  static constexpr std::size_t capacity = 1 << 18;
  int fd_;
  std::unique_ptr<std::uint8_t[]> buffer_;
  std::size_t used_ = 0;
  off_t offset_ = header_size;
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
  std::int32_t left = array.count;
  for (std::size_t block = 0; left > 0 && out.ok(); ++block) {
    const std::int32_t n = std::min(left, kv_block_size);
    const std::span block_records(array.blocks[block].get(), static_cast<std::size_t>(n));
    write_records<Record>(out, block_records);
    left -= n;
  }
}

bool write_parts(image_writer& out) {
  for (const kv_list_part_t& part : kv_list_parts) {
    const auto& list = kv_sext.*part.list;
    write_records(out, std::span(list.begin(), list.end()));
  }
  kv_for_each_part([&](const auto& part) { write_array(out, kv_sext.*part.array); });
  return out.flush();
}

// Makes the file begin with the header, which makes it valid, and end at `length`. Readers go by
// the counts, so bytes of an older image behind the new one would not mislead them.
bool finish_image(int fd, off_t length) {
  std::array<std::uint8_t, header_size> header;
  kv_encode_record(kv_sext.general_info, header.data());
  if (!write_at(fd, header, 0)) return false;
  return ::ftruncate(fd, length) == 0;
}

std::FILE* open_listing(const std::string& path) {
  kv_debug(" KV_GEN_DATA : file_path : \"%s\"\n", path.c_str());
  std::FILE* file = gx_popen_file(path, 'W', false);
  if (!file) {
    kv_debug("!! ERROR :KV_GEN_DATA  : file_path not open : \"%s\"\n", path.c_str());
    gx_display_list("# RUN ");
    gx_display_list("# !! Error : Impossible to Open the file : ");
    gx_display_list("# \"" + path + "\"");
  }
  return file;
}

struct close_file {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

bool kv_write_output(bool gen_data, std::string_view listing_dir) {
  const int fd = kv_sext.designfile;
  if (!write_at(fd, std::array<std::uint8_t, header_size>{}, 0)) return false;

  std::unique_ptr<std::FILE, close_file> listing;
  bool listing_ok = true;
  if (gen_data) {
    const std::string path = std::string(listing_dir) + "/kivo_data";
    listing.reset(open_listing(path));
    if (!listing) {
      finish_image(fd, header_size);
      return false;
    }
    listing_ok = kv_write_listing_head(listing.get(), path);
  }
  image_writer image(fd);
  if (!write_parts(image) || !finish_image(fd, image.length())) return false;
  if (listing && listing_ok) listing_ok = kv_write_listing_body(listing.get());
  return listing_ok;
}
