#include "platform/stop_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>

namespace {

volatile sig_atomic_t noted = 0;
int ends[2] = {-1, -1};  // of the pipe that wakes poll

void note(int signal) {
  const int error = errno;
  if (noted == 0) noted = signal;
  [[maybe_unused]] const auto written = write(ends[1], "", 1);
  errno = error;
}

void watch(int signal, int flags) {
  struct sigaction before {};
  sigaction(signal, nullptr, &before);
  if (before.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  action.sa_handler = note;
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

}  // namespace

void x_watch_stop_signals() {
  if (ends[0] >= 0 || pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
  for (const int signal : {SIGHUP, SIGINT, SIGTERM})
    watch(signal, SA_RESTART | static_cast<int>(SA_RESETHAND));
  watch(SIGXFSZ, SA_RESTART);  // comes again with every write
}

int x_stop_signal() { return noted; }

int x_stop_descriptor() { return ends[0]; }

void x_forget_stop_waking() {
  char bytes[16];
  while (read(ends[0], bytes, sizeof bytes) > 0) {
  }
}

// A handler, unlike SIG_IGN, is not inherited by the programs that this one starts.
void x_survive_broken_pipes() {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  action.sa_flags = SA_RESTART;
  sigaction(SIGPIPE, &action, nullptr);
}
