#include "platform/shell.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <string>
#include <utility>

#include "platform/timing.h"

extern char** environ;

namespace {

constexpr int look_ms = 50;        // between two looks whether to stop
constexpr int patience_ms = 1000;  // with a command that was asked to end
constexpr std::int32_t max_nap_ms = 20;

bool enabled = true;

// Starts a program by its path; its standard output goes to `output` when that is one. -1: not
// started.
pid_t start(const char* program, std::initializer_list<const char*> words, int output = -1) {
  if (!enabled) return -1;
  std::fflush(nullptr);  // what was said before stays before what the program says
  char* arguments[4] = {};
  std::transform(words.begin(), words.end(), arguments,
                 [](const char* word) { return const_cast<char*>(word); });
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (output >= 0) posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  pid_t process = -1;
  if (posix_spawn(&process, program, &actions, nullptr, arguments, environ) != 0) process = -1;
  posix_spawn_file_actions_destroy(&actions);
  return process;
}

pid_t start_shell(const char* command, int output = -1) {
  return start("/bin/sh", {"sh", "-c", command}, output);
}

bool has_ended(pid_t process) {
  const pid_t ended = waitpid(process, nullptr, WNOHANG);
  return ended == process || (ended < 0 && errno != EINTR);
}

// Waits until the process has ended or `leave` says so; whether it has ended.
template <typename Leave>
bool wait_for(pid_t process, Leave leave) {
  for (std::int32_t nap_ms = 1; !has_ended(process); nap_ms = std::min(2 * nap_ms, max_nap_ms)) {
    if (leave()) return false;
    xdelayms(nap_ms);
  }
  return true;
}

void end(pid_t process) {
  kill(process, SIGTERM);
  const auto since = xtimems();
  if (wait_for(process, [&] { return xdiftimems(since.tv_sec, since.tv_usec) > patience_ms; }))
    return;
  kill(process, SIGKILL);
  wait_for(process, [] { return false; });
}

}  // namespace

void xshell_disable() { enabled = false; }

x_shell::x_shell(const char* command, x_stop_asked_t stop_asked)
    : stop_asked_(std::move(stop_asked)) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  x_descriptor own(ends[0]);
  const x_descriptor other(ends[1]);
  process_ = start_shell(command, other.get());
  if (process_ < 0) return;
  output_ = x_stoppable_input(
      std::move(own), [this] { return is_stopped(); }, look_ms);
}

x_shell::~x_shell() {
  output_.reset();
  if (process_ < 0) return;
  if (!wait_for(process_, [this] { return is_stopped(); })) end(process_);
}

bool x_shell::is_stopped() {
  stopped_ = stopped_ || stop_asked_();
  return stopped_;
}

void xshell_run(const char* command, const x_stop_asked_t& stop_asked) {
  const pid_t process = start_shell(command);
  if (process < 0) return;
  if (!wait_for(process, stop_asked)) end(process);
}

void x_run_program(const char* program, const char* argument) {
  const pid_t process = start(program, {program, argument});
  if (process >= 0) wait_for(process, [] { return false; });
}

std::string x_shell_word(std::string_view text) {
  constexpr std::string_view plain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-+./:@%,=";
  if (!text.empty() && text.find_first_not_of(plain) == std::string_view::npos)
    return std::string(text);
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}
