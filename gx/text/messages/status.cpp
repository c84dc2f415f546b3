#include "gx/text/messages/status.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/messages/status_names.h"
#include "gx/text/strings.h"
#include "platform/files.h"
#include "platform/shell.h"

STATUS_T status;

namespace {

constexpr char context_saver[] = "/users/velmoran/bin/save_context";

std::vector<void (*)()>& releases() {
  static std::vector<void (*)()> list;
  return list;
}

// Hands the design directory to the installation's context saver, once there is a session to save.
void save_context() {
  if (!gx_session.all_init_done || gx_session.nb_arg_comline < 2) return;
  const std::string_view design = gx_view(gx_session.argcomline[1]);
  if (design.empty() || design.size() > 163) return;
  const std::string argument(design);
  gx_debug(" !! cmd_system : \"%s %s\" \n", context_saver, argument.c_str());
  x_run_program(context_saver, argument.c_str());  // no shell reads the name
}

void close_file(std::FILE*& file) { x_file(std::exchange(file, nullptr)).reset(); }
}  // namespace

std::string_view gx_error_name(int code) {
  if (code < 0 || code >= gx_number_of_codes) return {};
  return gx_at(gx_error_array, code);
}

void gx_set_status(gx_code code) {
  static bool stopping = false;
  const int number = static_cast<int>(code);
  status.all = number + gx_status_base;
  std::fprintf(gx_front().messages(), " ?? error in gx_package  code : %d\n ?? error  : %30s\n",
               number, gx_error_name(number).data());
  std::fflush(stdout);
  if (!stopping) {  // a stop inside the stop goes straight to the abort
    stopping = true;
    save_context();
    close_file(gx_session.debugfile);
    gx_release_all();
  }
  std::fflush(nullptr);
  if (!gx_front().aborts) std::_Exit(gx_front().stop_status);
  std::abort();
}

void gx_check(const STATUS_T& word) {
  if (word.all == 0) return;
  gx_debug(" gx_check :  status.all <> gx_operation_ok : %d\n", word.all);
  gx_set_status(gx_code::current_file_invalid);
}

void gx_at_fatal_stop(void (*release)()) {
  auto& list = releases();
  if (std::find(list.begin(), list.end(), release) == list.end()) list.push_back(release);
}

void gx_release_all() {
  auto& list = releases();
  while (!list.empty()) {
    const auto release = list.back();
    list.pop_back();
    release();
  }
}

void gx_end_process(std::string_view message, int exit_status) {
  std::fprintf(gx_front().messages(), "%.*s\n", static_cast<int>(message.size()), message.data());
  close_file(gx_session.debugfile);
  close_file(gx_session.cursessfile);
  gx_release_all();
  std::fflush(nullptr);
  std::_Exit(exit_status);
}
