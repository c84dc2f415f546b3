// kivo-simlink: takes the place of the simulator at the other end of the FIFO and prints each
// request.
//
//   kivo-simlink DIRECTORY [COUNT]
//
// DIRECTORY is the directory of the primary sheet. The FIFO is made when it is not there, and is
// removed again at the end: after COUNT requests, or at Control+C.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "expand/sim_request.h"
#include "gx/text/numbers.h"
#include "platform/usage.h"

namespace {

constexpr tool_t tool = {
    "kivo-simlink",
    "usage: kivo-simlink DIRECTORY [COUNT]\n"
    "Stands in for the simulator: prints each request that KIVO sends to the FIFO of the design\n"
    "DIRECTORY, COUNT of them or until Control+C. The FIFO is made when it is not there.\n"
    "  --help, --version\n"};

volatile std::sig_atomic_t stopped = 0;
void stop(int) { stopped = 1; }

// Prints the whole lines at the head of `text`; returns how many.
long print_lines(std::string& text) {
  long lines = 0;
  for (std::size_t end; (end = text.find('\n')) != std::string::npos; ++lines) {
    std::printf("%.*s\n", static_cast<int>(end), text.data());
    text.erase(0, end + 1);
  }
  std::fflush(stdout);
  return lines;
}

// Until `count` requests have come (0: without end). Short waits: a signal may come between the
// look at `stopped` and the wait.
void listen(int fd, long count) {
  std::string text;
  for (long met = 0; !stopped && (count == 0 || met < count);) {
    pollfd data{fd, POLLIN, 0};
    if (::poll(&data, 1, 200) <= 0) continue;
    char piece[4096];
    const ssize_t n = ::read(fd, piece, sizeof piece);
    if (n < 0 && errno != EINTR && errno != EAGAIN) return;
    if (n > 0) text.append(piece, static_cast<std::size_t>(n));
    met += print_lines(text);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string_view> words;
  if (const auto ended = tool_read(tool, argc, argv, {}, words)) return *ended;
  const auto count = gx_whole_number<long>(words.size() == 2 ? words[1] : "0");
  if (words.empty() || words.size() > 2 || !count || *count < 0)
    return tool_usage_error(tool, "a DIRECTORY, and perhaps a COUNT, are wanted");
  const std::string path = std::string(words[0]) + "/" + std::string(kv_fifo_name);
  const bool made = ::mkfifo(path.c_str(), 0600) == 0;
  // Open for writing too, so that the FIFO does not end with each writer.
  const int fd = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  struct stat info;
  if (fd < 0 || ::fstat(fd, &info) != 0 || !S_ISFIFO(info.st_mode)) {
    std::fprintf(stderr, "kivo-simlink: no FIFO %s\n", path.c_str());
    return 1;
  }
  std::signal(SIGINT, stop);
  std::signal(SIGTERM, stop);
  listen(fd, *count);
  ::close(fd);
  if (made) ::unlink(path.c_str());
  return 0;
}
