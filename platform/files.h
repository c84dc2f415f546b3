// Files through few doors: owners that close, opening what may be waited for or written through,
// reading and writing whole. A call that fails leaves in errno what the system said, for x_why.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "platform/raw_files.h"

// Owns a FILE.
struct x_file_closer {
  void operator()(std::FILE* file) const;
};
using x_file = std::unique_ptr<std::FILE, x_file_closer>;

// Closes the file; false when not all that was written to it reached it.
bool x_close(x_file file);

// What an errno says: "No such file or directory".
std::string x_why(int error);
// The same of x_open_regular, x_read_regular and x_replace_file: "Not a regular file" for a pipe or
// a device.
std::string x_why_unread(int error);
// The same of a file that is made or written, which is never done through a link.
std::string x_why_unwritten(int error);
// Whether it says that there is no such file to read. Any other error: something exists
// there but cannot be read.
bool x_is_missing(int error);

// Opens a regular file for reading. All others are refused at once (EISDIR, or EINVAL for a pipe or
// a device): reading them would give nothing, or wait or go on for ever.
x_descriptor x_open_regular(const std::string& path);
x_file x_open_regular_file(const std::string& path);  // the same for reading lines

// Opens a file for writing, made when it is missing (0660 less the umask) and cut to nothing.
// Directories and pipes are refused; a symbolic link is when `through_link` is false (ELOOP), as
// for the program's own files in a directory that others may write to.
x_file x_create_file(const std::string& path, bool through_link);

// Makes a new file for writing (0660 less the umask); whatever exists at the path is
// removed first, never opened; a directory refuses.
x_file x_create_new_file(const std::string& path);

// A file for writing that takes its path only when it is whole: until then it is `path`.part, and a
// file at the path stays as it is. A link is followed, a device is written to, a pipe and a
// directory are refused.
class x_fresh_file {
 public:
  explicit x_fresh_file(const std::string& path);  // not open when it cannot be made
  ~x_fresh_file();                                 // what is not in its place is removed
  x_fresh_file(x_fresh_file&&) noexcept = default;
  x_fresh_file& operator=(x_fresh_file&&) = delete;

  std::FILE* get() const { return file_.get(); }
  explicit operator bool() const { return file_ != nullptr; }
  // False when not all that was written reached it.
  bool close();
  // Closes it, too, if need be.
  bool put_in_place();

 private:
  std::string path_, unfinished_;  // unfinished_: "" when it is no more, or a device
  x_file file_;
};

// The bytes of a file from its beginning, at most `limit`.
bool x_read_whole(int file, std::string& bytes, std::size_t limit);
// The same of a regular file at a path.
bool x_read_regular(const std::string& path, std::string& bytes, std::size_t limit);
// All bytes, from an offset on.
bool x_write_at(int file, std::string_view bytes, off_t offset);

// Puts a file with these bytes in the place of another, so that at any moment, also after a kill or
// a loss of power, the path names the old file or the whole new one. What is there and is no
// regular file stays (EISDIR, EINVAL).
bool x_replace_file(const std::string& path, std::string_view bytes);
