#include "app/session/batch_output.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "gx/text/message_list.h"
#include "platform/files.h"

namespace {
using clock_type = std::chrono::steady_clock;
constexpr std::chrono::milliseconds longest_wait{50};

struct output_t {
  bool quiet = false;
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

void read_line(std::string_view line, gx_line_kind kind) {
  if (output.quiet) {
    print_complaint(line, kind);
  } else {
    print(line);
  }
  if (clock_type::now() - output.flushed > longest_wait) kv_flush_batch_output();
}
}  // namespace

void kv_open_batch_output(bool quiet) {
  output = {.quiet = quiet, .lost = false, .flushed = clock_type::now(), .before = {}};
  gx_set_list_reader(read_line);
}

bool kv_flush_batch_output() {
  check(std::fflush(stdout) == 0);
  output.flushed = clock_type::now();
  return !output.lost;
}
