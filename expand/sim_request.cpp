#include "expand/sim_request.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <string>
#include <utility>

#include "expand/debug.h"
#include "gx/db/file/file_state.h"
#include "gx/text/messages/message_list.h"

int KivoSpice_fifo_fd = -1;

namespace {

constexpr int full_fifo_limit_ms = 2000;  // for a reader that is busy to make room

// No SIGPIPE reaches this thread inside the scope: a reader that goes away is an error of write.
class no_sigpipe {
 public:
  no_sigpipe() {
    ::sigemptyset(&pipe_);
    ::sigaddset(&pipe_, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
  }
  ~no_sigpipe() {
    const timespec at_once{};
    if (::sigismember(&before_, SIGPIPE) == 0) ::sigtimedwait(&pipe_, nullptr, &at_once);
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  no_sigpipe(const no_sigpipe&) = delete;
  no_sigpipe& operator=(const no_sigpipe&) = delete;

 private:
  sigset_t pipe_, before_;
};

void tell_not_ready(const std::string& path) {
  gx_display_list("# Send Data to SPICE : ");
  gx_display_list("# !! Sorry Spice is not ready ... ", gx_line_kind::error);
  gx_tell_detail("# !! Exec again the WaitFor (WF) spice command ...");
  kv_debug("  DEbug : kv_send_request :1: Can't create the FIFO (spice Off ?) .  \n%s\n",
           path.c_str());
  std::printf("!! Error : Can't open the Fifo to SPICE  name:'%s'\n", path.c_str());
}

// The line is short enough that a FIFO takes all of it or nothing.
bool write_line(int fd, const std::string& line) {
  const no_sigpipe scope;
  for (;;) {
    const ssize_t n = ::write(fd, line.data(), line.size());
    if (n == static_cast<ssize_t>(line.size())) return true;
    if (n < 0 && errno == EINTR) continue;
    if (n >= 0 || errno != EAGAIN) return false;
    pollfd room{fd, POLLOUT, 0};
    if (::poll(&room, 1, full_fifo_limit_ms) <= 0) return false;
  }
}

}  // namespace

bool kv_send_request(std::string_view request) {
  if (request.empty()) return false;
  const std::string line = std::string(request.substr(0, kv_max_request)) + "\n";
  std::string path(gx_view(gx_files.filear[1].dirname));
  path.append("/").append(kv_fifo_name);
  // Without O_NONBLOCK the opening would wait for a reader.
  do {
    KivoSpice_fifo_fd = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  } while (KivoSpice_fifo_fd < 0 && errno == EINTR);
  if (KivoSpice_fifo_fd < 0) {
    const int reason = errno;
    tell_not_ready(path);
    // ENOENT and ENXIO: nobody listens. Anything else is reported as what it is.
    if (reason != ENOENT && reason != ENXIO)
      gx_tell_detail("# !! \"", path, "\" : ", std::strerror(reason));
    return false;
  }
  struct stat file;
  if (::fstat(KivoSpice_fifo_fd, &file) != 0 || !S_ISFIFO(file.st_mode)) {
    tell_not_ready(path);
    gx_tell_detail("# !! \"", path, "\" : is no FIFO");
    ::close(std::exchange(KivoSpice_fifo_fd, -1));
    return false;
  }
  kv_debug(" DEbug : kv_send_request :2:  data:'%.*s'\n", static_cast<int>(line.size() - 1),
           line.data());
  const bool is_sent = write_line(KivoSpice_fifo_fd, line);
  if (!is_sent) tell_not_ready(path);
  ::close(KivoSpice_fifo_fd);
  KivoSpice_fifo_fd = -1;
  return is_sent;
}
