#include "app/session/batch_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "app/session/batch_json.h"
#include "platform/files.h"

namespace {
using clock_type = std::chrono::steady_clock;
constexpr std::chrono::milliseconds longest_wait{50};

struct output_t {
  kv_batch_form_t form;
  std::FILE* stream = stdout;
  bool lost = false;
  clock_type::time_point flushed;
  std::string before;  // the line before, when it may be the echo of what is refused next
  kv_batch_faults_t errors, warnings;
  int errors_before = 0, warnings_before = 0;  // the answer under way
};
output_t output;

void check(bool written) {
  if (written || output.lost) return;
  output.lost = true;
  std::fprintf(stderr, "kivo: standard output: %s\n", x_why(errno).c_str());
}

void print_text(std::string_view text) {
  check(std::fwrite(text.data(), 1, text.size(), output.stream) == text.size());
}

void print(std::string_view line) {
  print_text(line);
  print_text("\n");
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

void count(kv_batch_faults_t& faults, std::string_view line) {
  if (faults.lines++ == 0) faults.first = line;
}

void count_fault(std::string_view line, gx_line_kind kind) {
  if (kind == gx_line_kind::error) count(output.errors, line);
  if (kind == gx_line_kind::warning) count(output.warnings, line);
}

void take_line(std::string_view line, gx_line_kind kind) {
  count_fault(line, kind);
  print(line);
  flush_in_time();
}

void take_line_quietly(std::string_view line, gx_line_kind kind) {
  count_fault(line, kind);
  print_complaint(line, kind);
  flush_in_time();
}

void take_line_as_data(std::string_view line, gx_line_kind kind) {
  count_fault(line, kind);
  kv_take_json_line(line, kind);
}

// Standard output becomes the stream of the objects; what prints to it prints to standard error.
void keep_output_for_data() {
  const int own = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
  std::FILE* stream = own < 0 ? nullptr : fdopen(own, "w");
  if (stream == nullptr) return check(false);
  output.stream = stream;
  dup2(STDERR_FILENO, STDOUT_FILENO);
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

constexpr gx_front_t data = [] {
  gx_front_t front = lines;
  front.take_line = take_line_as_data;
  return front;
}();
}  // namespace

const gx_front_t& kv_batch_lines(const kv_batch_form_t& form) {
  output.form = form;
  output.flushed = clock_type::now();
  if (!form.json) return form.quiet ? quiet_lines : lines;
  kv_begin_json();
  keep_output_for_data();
  return data;
}

void kv_end_batch_answer(std::string_view command, bool strict) {
  const bool is_fault = output.errors.lines > output.errors_before ||
                        (strict && output.warnings.lines > output.warnings_before);
  output.errors_before = output.errors.lines;
  output.warnings_before = output.warnings.lines;
  if (output.form.json) print_text(kv_end_json_answer(command, is_fault));
  if (!output.form.mark.empty() && !command.empty()) print(output.form.mark);
  output.before.clear();
  if (output.form.json || !output.form.mark.empty()) kv_flush_batch_output();
}

bool kv_flush_batch_output() {
  check(std::fflush(output.stream) == 0);
  output.flushed = clock_type::now();
  return !output.lost;
}

const kv_batch_faults_t& kv_batch_errors() { return output.errors; }
const kv_batch_faults_t& kv_batch_warnings() { return output.warnings; }
