#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {
constexpr mode_t creation_mode = 0660;

x_descriptor refused(int error) {
  errno = error;
  return x_descriptor();
}

x_file stream_of(x_descriptor descriptor, const char* mode) {
  if (!descriptor) return nullptr;
  x_file file(fdopen(descriptor.get(), mode));
  if (file) descriptor.release();
  return file;
}

x_descriptor create(const std::string& path, bool through_link) {
  const int flags = O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC | (through_link ? 0 : O_NOFOLLOW);
  x_descriptor file(xfopen(path.c_str(), flags, creation_mode));
  struct stat info {};
  if (!file || fstat(file.get(), &info) != 0) return file;
  if (S_ISFIFO(info.st_mode)) return refused(EINVAL);
  if (S_ISREG(info.st_mode) && ftruncate(file.get(), 0) != 0) return refused(errno);
  return file;
}

// A file left by a killed process is not in use.
x_descriptor create_new(const std::string& path) {
  unlink(path.c_str());
  const int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
  return x_descriptor(xfopen(path.c_str(), flags, creation_mode));
}

// The directory's entry on the disk, too; one that cannot be opened for reading goes without.
void sync_directory_of(const std::string& path) {
  const auto slash = path.rfind('/');
  const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const x_descriptor opened(xfopen(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
  if (opened) fsync(opened.get());
}

bool write_synced(const x_descriptor& file, std::string_view bytes) {
  return x_write_at(file.get(), bytes, 0) && fsync(file.get()) == 0;
}
}  // namespace

void x_file_closer::operator()(std::FILE* file) const { std::fclose(file); }

bool x_close(x_file file) { return file != nullptr && std::fclose(file.release()) == 0; }

std::string x_why(int error) { return std::strerror(error); }

std::string x_why_unread(int error) {
  return error == EINVAL ? "Not a regular file" : x_why(error);
}

std::string x_why_unwritten(int error) {
  return error == ELOOP ? "is a symbolic link" : x_why(error);
}

bool x_is_missing(int error) {
  constexpr int missing[] = {ENOENT, ENOTDIR, ENAMETOOLONG, EISDIR, EINVAL};
  return std::ranges::find(missing, error) != std::end(missing);
}

x_descriptor x_open_regular(const std::string& path) {
  x_descriptor file(xfopen(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0));
  struct stat info {};
  if (!file || fstat(file.get(), &info) != 0) return file;
  if (S_ISDIR(info.st_mode)) return refused(EISDIR);
  if (!S_ISREG(info.st_mode)) return refused(EINVAL);
  return file;
}

x_file x_open_regular_file(const std::string& path) { return stream_of(x_open_regular(path), "r"); }

x_file x_create_file(const std::string& path, bool through_link) {
  return stream_of(create(path, through_link), "w");
}

x_file x_create_new_file(const std::string& path) { return stream_of(create_new(path), "w"); }

x_fresh_file::x_fresh_file(const std::string& path) : path_(path) {
  struct stat there {};
  const bool is_there = stat(path.c_str(), &there) == 0;
  if (is_there && !S_ISREG(there.st_mode)) {
    file_ = x_create_file(path, true);
    return;
  }
  if (char* const real = is_there ? realpath(path.c_str(), nullptr) : nullptr) {
    path_ = real;
    std::free(real);
  }
  unfinished_ = path_ + ".part";
  file_ = x_create_new_file(unfinished_);
  if (!file_) unfinished_.clear();  // whatever has that name is not ours
}

x_fresh_file::~x_fresh_file() {
  file_.reset();
  if (!unfinished_.empty()) unlink(unfinished_.c_str());
}

bool x_fresh_file::close() {
  errno = 0;
  const bool is_written = file_ != nullptr && std::ferror(file_.get()) == 0;
  if (x_close(std::move(file_)) && is_written) return true;
  if (errno == 0) errno = ENOSPC;  // what an earlier write said is no longer known
  return false;
}

bool x_fresh_file::put_in_place() {
  if (file_ && !close()) return false;
  if (unfinished_.empty()) return true;
  if (std::rename(unfinished_.c_str(), path_.c_str()) != 0) return false;
  unfinished_.clear();
  return true;
}

bool x_read_whole(int file, std::string& bytes, std::size_t limit) {
  struct stat info {};
  if (fstat(file, &info) != 0) return false;
  bytes.resize(std::min(static_cast<std::size_t>(info.st_size), limit));
  std::size_t got = 0;
  while (got < bytes.size()) {
    const ssize_t n = pread(file, bytes.data() + got, bytes.size() - got, static_cast<off_t>(got));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) break;  // cut meanwhile
    got += static_cast<std::size_t>(n);
  }
  bytes.resize(got);
  return true;
}

bool x_read_regular(const std::string& path, std::string& bytes, std::size_t limit) {
  const x_descriptor file = x_open_regular(path);
  return file && x_read_whole(file.get(), bytes, limit);
}

bool x_write_at(int file, std::string_view bytes, off_t offset) {
  while (!bytes.empty()) {
    const ssize_t n = pwrite(file, bytes.data(), bytes.size(), offset);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(n));
    offset += n;
  }
  return true;
}

bool x_replace_file(const std::string& path, std::string_view bytes) {
  struct stat there {};
  if (stat(path.c_str(), &there) == 0 && !S_ISREG(there.st_mode)) {
    errno = S_ISDIR(there.st_mode) ? EISDIR : EINVAL;
    return false;
  }
  const std::string fresh = path + ".new";
  const x_descriptor file = create_new(fresh);
  if (file && write_synced(file, bytes) && std::rename(fresh.c_str(), path.c_str()) == 0) {
    sync_directory_of(path);
    return true;
  }
  const int error = errno;
  if (file) unlink(fresh.c_str());
  errno = error;
  return false;
}
