// Maps a design file by its header.
#include "kvi/load.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

#include "gx/text/at.h"
#include "kvi/check.h"
#include "kvi/file_lock.h"

namespace {

constexpr std::size_t entry_size = kv_layout<kv_prop_type_record_t>::size;

// Fills `bytes` from the start of the file; false when the file ends before.
bool read_start(int fd, std::uint8_t* bytes, std::size_t size) {
  for (std::size_t got = 0; got < size;) {
    const ssize_t n = ::pread(fd, bytes + got, size - got, static_cast<off_t>(got));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    got += static_cast<std::size_t>(n);
  }
  return true;
}

// The size of the parts that the counts announce; nothing when a count cannot be.
std::optional<std::size_t> size_of_parts(const kv_general_info_record_t& info) {
  bool sound = info.software_revision == 1.0F;
  std::size_t size = 0;
  const auto add = [&](std::int32_t count, std::int32_t limit, std::size_t record_size) {
    sound = sound && count >= 0 && count <= limit;
    if (sound) size += static_cast<std::size_t>(count) * record_size;
  };
  for (const kv_list_part_t& part : kv_list_parts) add(info.*part.count, kv_max_list, entry_size);
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    add(info.*part.count, std::numeric_limits<std::int32_t>::max() - 1, kv_layout<record>::size);
  });
  return sound ? std::optional(size) : std::nullopt;
}

bool holds_bytes(int fd, std::size_t size) {
  struct stat file;
  return ::fstat(fd, &file) == 0 && S_ISREG(file.st_mode) &&
         static_cast<std::uint64_t>(file.st_size) >= size;
}

}  // namespace

kvi_load_result kvi_design_t::load(int fd, std::string* damage) try {
  clear();
  kvi_load_result result = map(fd);
  if (result == kvi_load_result::loaded) {
    decode_lists();
    const auto found = kvi_find_damage(*this, fd);
    if (found && damage) *damage = *found;
    if (found) result = kvi_load_result::damaged;
    if (!holds_bytes(fd, file_.size())) result = kvi_load_result::too_short;  // cut meanwhile
  }
  if (result != kvi_load_result::loaded) clear();
  return result;
} catch (const std::bad_alloc&) {
  clear();
  return kvi_load_result::no_memory;
}

// The size of the file is looked at before anything is taken for what the counts announce.
kvi_load_result kvi_design_t::map(int fd) {
  if (!read_start(fd, header_.data(), header_.size())) return kvi_load_result::too_short;
  kv_decode_record(header_.data(), info_);
  const auto size = size_of_parts(info_);
  if (!size) return kvi_load_result::damaged;
  if (!holds_bytes(fd, header_size + *size)) return kvi_load_result::too_short;
  return file_.map(fd, header_size + *size) ? kvi_load_result::loaded : kvi_load_result::no_memory;
}

void kvi_design_t::decode_lists() {
  std::size_t at = header_size;
  for (const kv_list_part_t& part : kv_list_parts) {
    auto& list = kept_.*part.list;
    list.count = info_.*part.count;
    for (std::int32_t i = 0; i < list.count; ++i, at += entry_size) {
      kv_decode_record(file_.bytes() + at, gx_at(list.entry, i));
    }
  }
  std::size_t k = 0;
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    offset_[k] = at;
    count_[k] = info_.*part.count;
    at += static_cast<std::size_t>(count_[k++]) * kv_layout<record>::size;
  });
}

bool kvi_design_t::is_unchanged() const {
  return !file_.bytes() ||
         (std::equal(header_.begin(), header_.end(), file_.bytes()) && !file_.is_cut());
}

kvi_loaded_t kvi_load_design(kvi_design_t& design, int fd, const std::string& path) {
  design = {};
  if (const auto writer = kvi_lock_shared(fd)) {
    return {kvi_load_result::locked, path + ": is being written by " + *writer};
  }
  std::string damage;
  const kvi_load_result result = design.load(fd, &damage);
  kvi_unlock(fd);
  switch (result) {
    case kvi_load_result::loaded:
      return {};
    case kvi_load_result::too_short:
      return {result, path + ": truncated"};
    case kvi_load_result::no_memory:
      return {result, path + ": not enough memory"};
    default:
      break;
  }
  return {result, path + ": no design file, or damaged" + (damage.empty() ? "" : " at " + damage)};
}

kvi_loaded_t kvi_open_design(kvi_design_t& design, std::string path) {
  design = {};
  struct stat file;
  const std::string directory = path;
  const bool is_directory = ::stat(path.c_str(), &file) == 0 && S_ISDIR(file.st_mode);
  if (is_directory) path += "/design_kv";
  int fd;
  do {
    fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0 && errno == ENOENT && is_directory)
    return {kvi_load_result::unreadable, directory + ": not expanded: no design_kv in it"};
  if (fd < 0) return {kvi_load_result::unreadable, path + ": " + std::strerror(errno)};
  kvi_loaded_t loaded = kvi_load_design(design, fd, path);
  ::close(fd);
  return loaded;
}

std::string kvi_changed_message(const std::string& path) {
  return path + ": was written again, or cut, since it was loaded";
}
