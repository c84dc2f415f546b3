#include "app/session/batch.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "app/language/do_file.h"
#include "app/session/batch_output.h"
#include "app/session/root.h"
#include "app/session/root_session.h"
#include "app/state.h"
#include "app/values/answers.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/object_access.h"
#include "gx/display/window.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"
#include "platform/files.h"
#include "platform/stop_signals.h"
#include "platform/wait.h"

namespace {
constexpr std::string_view standard_input = "-";
constexpr std::size_t longest_word = gx_max_string_length - 2;

void check_word(std::string_view word, std::size_t longest) {
  const bool is_text = std::ranges::all_of(word, [](char c) { return c >= 32 && c <= 126; });
  if (!is_text) kv_refuse_run("only printable characters of ASCII are read: " + std::string(word));
  if (word.size() > longest)
    kv_refuse_run("longer than " + std::to_string(longest) + " characters: " + std::string(word));
}

void check_design(std::string_view design) {
  check_word(design, longest_word);
  const x_descriptor directory(
      xfopen(std::string(design).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
  if (!directory) kv_refuse_run(std::string(design) + ": " + x_why(errno));
}

void check_do_file(std::string_view path) {
  if (path == standard_input) return;
  check_word(path, gx_max_path);
  const std::string resolved(gx_view(gx_resolve_path(path)));
  if (x_open_regular(resolved)) return;
  kv_refuse_run(resolved + ": " + (errno == EINVAL ? "is no file" : x_why(errno)));
}

void check_arguments(std::span<const std::string_view> arguments) {
  if (arguments.size() > kv_most_arguments)
    kv_refuse_run("a command file takes at most " + std::to_string(kv_most_arguments) +
                  " arguments");
  for (const std::string_view argument : arguments) check_word(argument, longest_word);
}

std::vector<std::string> words_of(const kv_batch_t& batch) {
  std::vector<std::string> words = {batch.program, std::string(batch.design),
                                    std::string(batch.do_file)};
  words.insert(words.end(), batch.arguments.begin(), batch.arguments.end());
  return words;
}

// Standard input for this program alone: what the commands start does not read from it.
x_file take_standard_input() {
  x_descriptor own(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3));
  if (!own || ::read(own.get(), nullptr, 0) < 0) kv_refuse_run("standard input: " + x_why(errno));
  x_file stream = x_stoppable_input(
      std::move(own), [] { return x_stop_signal() != 0; }, -1);
  const x_descriptor nothing(xfopen("/dev/null", O_RDONLY | O_CLOEXEC, 0));
  if (nothing) ::dup2(nothing.get(), STDIN_FILENO);
  return stream;
}

// False when it could not be read to its end.
bool answer_standard_input(std::FILE* commands, bool strict) {
  const auto next_line = [&](gx_string_record_t& line) {
    if (gx_vext.end_flag || x_stop_signal() != 0) return false;
    gx_front().flush();
    std::fflush(gx_vext.cursessfile);
    return gx_read_one_line(commands, line);
  };
  for (gx_string_record_t line; next_line(line);) {
    kv_process_line(line, kv_pext.ext_arg, kv_pext.top_var);
    kv_end_batch_answer(gx_view(line), strict);
  }
  if (std::ferror(commands) == 0) return true;
  std::fprintf(stderr, "kivo: standard input: %s\n", x_why(errno).c_str());
  return false;
}

std::string words_of(const kv_batch_faults_t& faults, const std::string& what, int counted) {
  if (faults.lines == 0)
    return std::to_string(counted) + " counted as " + what + ", without a line";
  const std::string first = "\"" + faults.first + "\"";
  if (faults.lines == 1) return "1 line of " + what + ": " + first;
  return std::to_string(faults.lines) + " lines of " + what + ", the first: " + first;
}

// Why the commands make the status 1; empty: they do not. `inherited` errors are those that the
// sheet's own header gives.
std::string faults_of(const kv_batch_t& batch, int inherited) {
  const int errors = gx_vext.num_errors - inherited;
  if (errors > 0 || gx_vext.worst == gx_line_kind::error)
    return words_of(kv_batch_errors(), "error", errors);
  if (batch.strict && (gx_vext.num_warnings > 0 || gx_vext.worst == gx_line_kind::warning))
    return words_of(kv_batch_warnings(), "warning", gx_vext.num_warnings);
  return {};
}

bool tell_whether_written(const kv_batch_t& batch, bool all_written) {
  if (all_written || gx_vext.cursess_lost) return true;  // or reported already
  gx_complain(std::string(batch.design) + "/current_session: " + x_why(errno));
  return false;
}
}  // namespace

int kv_run_batch(const kv_batch_t& batch) {
  gx_set_front(kv_batch_lines({batch.quiet, batch.json, batch.mark}));
  kv_await_answers();
  check_design(batch.design);
  check_do_file(batch.do_file);
  check_arguments(batch.arguments);
  x_file commands;
  if (batch.do_file == standard_input) commands = take_standard_input();
  int inherited = 0;
  const auto answer = [&] {
    inherited = gx_ptrto_gene_file_buf(kv_pext.file_id_cur).num_errors;
    kv_end_batch_answer("", batch.strict);
    if (commands) return answer_standard_input(commands.get(), batch.strict);
    kv_run_start_up_file();
    kv_end_batch_answer("do " + std::string(batch.do_file), batch.strict);
    return true;
  };
  const auto end = [&](const kv_ended_t& ended) {
    if (!ended.had_sheet) return gx_front().refused_status;
    const bool is_written = tell_whether_written(batch, ended.all_written);
    if (!batch.quiet && !batch.json) kv_print_summary();
    const bool is_printed = kv_flush_batch_output();
    const bool is_done = ended.all_read && is_written && is_printed;
    const std::string faults = faults_of(batch, inherited);
    const bool is_told = gx_vext.cursess_error != 0 && kv_batch_errors().lines == 0;
    if (!faults.empty() && !is_told && x_stop_signal() == 0) gx_complain("status 1: " + faults);
    return kv_exit_status(is_done && faults.empty() ? 0 : 1);
  };
  const std::vector<std::string> words = words_of(batch);
  std::vector<const char*> pointers;
  for (const std::string& word : words) pointers.push_back(word.c_str());
  return kv_run({.lines = gx_front(),
                 .greets = false,
                 .traces = batch.trace,
                 .takes_empty_words = true,
                 .open_display = [](auto viewports, auto) { gx_init_noview(viewports); },
                 .refuse_start = [](const auto&, const auto& refusal) { kv_refuse_run(refusal); },
                 .answer = answer,
                 .end = end},
                pointers);
}
