#include "app/session/batch_output.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace {
using clock_type = std::chrono::steady_clock;
constexpr std::chrono::milliseconds longest_wait{50};

struct output_t {
  bool lost = false;
  clock_type::time_point flushed;
  std::string before;  // the line before, when it may be the echo of what is refused next
};
output_t output;

void check(bool written) {
  if (written || output.lost) return;
  output.lost = true;
  std::fprintf(stderr, "kivo: standard output: %s\n", x_why(errno).c_str());
}

void print(std::string_view line) {
  check(std::fwrite(line.data(), 1, line.size(), stdout) == line.size() &&
        std::fputc('\n', stdout) != EOF);
}

void print_complaint(std::string_view line, gx_line_kind kind) {
  const bool is_complaint = kind != gx_line_kind::plain;
  if (is_complaint && !output.before.empty()) print(output.before);
  output.before.clear();
  if (is_complaint) {
    print(line);
  } else if (line.starts_with("# ")) {
    output.before = line;
  }
}

void flush_in_time() {
  if (clock_type::now() - output.flushed > longest_wait) kv_flush_batch_output();
}

void take_line(std::string_view line, gx_line_kind) {
  print(line);
  flush_in_time();
}

void take_line_quietly(std::string_view line, gx_line_kind kind) {
  print_complaint(line, kind);
  flush_in_time();
}

// Somebody may look at a terminal: there the line is written over the one before it, and a line of
// the list over it.
void show_on_terminal(std::string_view line) {
  static bool is_shown = false;
  if (line.empty() && !is_shown) return;
  is_shown = !line.empty();
  if (isatty(STDERR_FILENO) == 0) return;
  std::fprintf(stderr, "%.*s\033[K\r", static_cast<int>(line.size()), line.data());
}

constexpr int fatal_stop_status = 3;
constexpr gx_front_t lines = {.take_line = take_line,
                              .keeps_lines = false,
                              .flush = [] { kv_flush_batch_output(); },
                              .show_progress = show_on_terminal,
                              .shows_pictures = false,
                              .may_wait = false,
                              .messages = [] { return stderr; },
                              .message_head = "kivo: ",
                              .refused_status = 2,
                              .ends_without_file = false,
                              .aborts = false,
                              .stop_status = fatal_stop_status};

constexpr gx_front_t quiet_lines = [] {
  gx_front_t front = lines;
  front.take_line = take_line_quietly;
  return front;
}();
}  // namespace

const gx_front_t& kv_batch_lines(bool quiet) {
  output.flushed = clock_type::now();
  return quiet ? quiet_lines : lines;
}

bool kv_flush_batch_output() {
  check(std::fflush(stdout) == 0);
  output.flushed = clock_type::now();
  return !output.lost;
}
