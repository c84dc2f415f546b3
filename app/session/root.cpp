// The first phase of a run: arguments, banner and debug file; then the phases in their order.
#include "app/session/root.h"

#include <fcntl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "app/session/root_session.h"
#include "app/state.h"
#include "expand/store.h"
#include "gx/text/arguments.h"
#include "gx/text/date.h"
#include "gx/text/debug.h"
#include "gx/text/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "platform/raw_files.h"
#include "platform/stop_signals.h"

namespace {
constexpr mode_t debug_file_mode = 0660;
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
}  // namespace

int kv_exit_status(int without_signal) {
  constexpr int ended_by_signal = 128;
  return x_stop_signal() == 0 ? without_signal : ended_by_signal + x_stop_signal();
}

void kv_print_summary() {
  if (const int signal = x_stop_signal(); signal != 0)
    std::printf("\n !! Ended by signal %d : %s\n", signal, strsignal(signal));
  const int errors = gx_vext.num_errors, warnings = gx_vext.num_warnings;
  std::printf("\n -- KIVO  Execution complete...%d %s, %d %s --\n", errors,
              errors < 2 ? "error" : "errors", warnings, warnings < 2 ? "warning" : "warnings");
}

void kv_refuse_run(const std::string& message, int window_status) {
  if (!gx_vext.batch) {
    std::printf("%s\n", message.c_str());
    std::exit(window_status);
  }
  std::fflush(stdout);
  std::fprintf(stderr, "kivo: %s\n", message.c_str());
  std::exit(kv_unusable_status);
}

void kv_open_debug_file() {
  const gx_string_record_t design = design_path();
  if (design.len == 0) {
    gx_count_error();
    kv_refuse_run("\n        !!! error no SHEET dir_name  ", 0);
  }
  const gx_date_t date = gx_get_date();
  if (!gx_vext.batch) print_banner(date);

  gx_string_record_t name = design;
  gx_concat_const("/debug_kivo", name);
  const x_descriptor created(xfopen(name.char_, O_RDWR | O_CREAT | O_CLOEXEC, debug_file_mode));
  gx_vext.debugfile = created ? std::fopen(name.char_, "we") : nullptr;
  if (gx_vext.debugfile == nullptr) {
    gx_count_error();
    kv_refuse_run("!!! ( kivo_root ) impossible to open debugfile_name  : \"" +
                      std::string(gx_view(name)) + "\" ",
                  0);
  }
  gx_debug(" kivo_root : strfile_name   : \"%s\" \n", design.char_);
  gx_trace("# kivo_root : debugfile_name : \"", gx_view(name), "\"");
  gx_debug("\n# INITIALIZE : date : %d-%d-%d**%d-%d\n\n", date.day, date.month, date.year,
           date.hour, date.minute);
  if (!gx_vext.batch) print_version(stdout);
  print_version(gx_vext.debugfile);
}

void initparam_before() {
  gx_vext.do_ind = 0;
  kv_pext = {};
  kv_sext.store_size = kv_start_records;
  kv_sext.primitive.count = 0;
  kv_sext.parameter.count = 0;
  kv_sext.property_instance.count = 0;
  kv_sext.property_pin.count = 0;
  kv_sext.property_net.count = 0;
}

void kivo_root(int argc, char** argv) {
  gx_vext.num_errors = gx_vext.num_warnings = 0;
  gx_vext.all_init_done = false;
  gx_vext.end_flag = false;
  gx_store_arg(argc, argv);
  kv_open_debug_file();

  gx_vext.num_errors = gx_vext.num_warnings = 0;
  const gx_string_record_t design = design_path();
  gx_trace("# INITIALIZE pathname : \"", gx_view(design), "\"");
  initparam_before();

  if (kv_open_session()) kv_run_session();
  kv_finish_session();
  kv_print_summary();
}
