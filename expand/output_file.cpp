#include "expand/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files.h"

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
