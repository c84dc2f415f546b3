// The first phase of a run: arguments, banner and debug file; then the phases in their order.
#include "app/session/root.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "app/session/root_session.h"
#include "app/state.h"
#include "expand/store.h"
#include "gx/text/arguments.h"
#include "gx/text/date.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "platform/files.h"
#include "platform/stop_signals.h"

namespace {
constexpr char version_text[] = "######    KIVO  version 2.02  22 mar 2004    ######";

// The design directory as the argument store keeps it.
gx_string_record_t design_path() {
  gx_string_record_t path;
  gx_get_arg(2, path);
  return path;
}

void print_version(std::FILE* to) { std::fprintf(to, "\n%12s%50s\n\n", "", version_text); }

void print_banner(const gx_date_t& date) {
  std::printf("%28s date : %d-%d-%d\n\n", "", date.day, date.month, date.year);
  std::printf("%23sexpand editor  from VELMORAN \n", "");
}

[[noreturn]] void refuse(const std::string& message) {
  gx_count_error();
  kv_refuse_run(message);
}

// The arguments are stored and the design directory is named.
void open_debug_file(bool greets) {
  const gx_string_record_t design = design_path();
  if (design.len == 0) refuse("\n        !!! error no SHEET dir_name  ");
  const gx_date_t date = gx_get_date();
  if (greets) print_banner(date);

  gx_string_record_t name = design;
  gx_concat_const("/debug_kivo", name);
  gx_vext.debugfile = x_create_file(name.char_, false).release();
  if (gx_vext.debugfile == nullptr) {
    const std::string why = x_why_unwritten(errno);
    refuse("!!! ( kivo_root ) impossible to open debugfile_name  : \"" +
           std::string(gx_view(name)) + "\" \n !! " + why);
  }
  gx_debug(" kivo_root : strfile_name   : \"%s\" \n", design.char_);
  gx_trace("# kivo_root : debugfile_name : \"", gx_view(name), "\"");
  gx_debug("\n# INITIALIZE : date : %d-%d-%d**%d-%d\n\n", date.day, date.month, date.year,
           date.hour, date.minute);
  if (greets) print_version(stdout);
  print_version(gx_vext.debugfile);
}
}  // namespace

int kv_exit_status(int without_signal) {
  constexpr int ended_by_signal = 128;
  return x_stop_signal() == 0 ? without_signal : ended_by_signal + x_stop_signal();
}

void kv_print_summary() {
  if (const int signal = x_stop_signal(); signal != 0)
    std::printf("\n !! Ended by signal %d : %s\n", signal, strsignal(signal));
  if (gx_vext.cursess_error != 0)
    std::printf("\n !! The session file is not whole : \"%s\" : %s\n", gx_vext.cursessname.char_,
                x_why(gx_vext.cursess_error).c_str());
  const int errors = gx_vext.num_errors, warnings = gx_vext.num_warnings;
  std::printf("\n -- KIVO  Execution complete...%d %s, %d %s --\n", errors,
              errors < 2 ? "error" : "errors", warnings, warnings < 2 ? "warning" : "warnings");
}

void kv_refuse_run(std::string_view message) {
  std::fflush(stdout);
  gx_complain(message);
  std::exit(gx_front().refused_status);
}

void initparam_before() {
  gx_vext.do_ind = 0;
  kv_pext = {};
  static_cast<kv_setup_t&>(kv_sext) = {};
}

int kv_run(const kv_front_t& front, std::span<const char* const> words) {
  gx_store_arg(static_cast<int>(words.size()), words.data());
  if (front.traces) open_debug_file(front.greets);
  gx_trace("# INITIALIZE pathname : \"", gx_view(design_path()), "\"");
  initparam_before();
  kv_ended_t ended{.had_sheet = kv_open_session(front)};
  if (ended.had_sheet) {
    kv_begin_session();
    ended.all_read = front.answer();
  }
  ended.all_written = kv_finish_session();
  return front.end(ended);
}
