// The shell escape: an external program whose output is a stream of commands.
#include "app/language/shell_escape.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "app/language/interpreter.h"
#include "gx/display/window.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"
#include "platform/shell.h"

namespace {
constexpr std::size_t max_text = 508;
constexpr std::size_t max_command = 504;
constexpr std::size_t max_listed = 196;  // longest text that the warning shows in the list
constexpr std::size_t max_shown = 192;
constexpr std::int32_t before_start_ms = 100;
constexpr std::int32_t after_start_ms = 150;

void refuse_text(std::string_view text) {
  if (text.size() > max_listed) {
    std::printf("# !!! Error :  Invalid Command ??  len:%d '%.*s'\n", static_cast<int>(text.size()),
                static_cast<int>(text.size()), text.data());
    return;
  }
  gx_tell_as(gx_line_kind::warning, "!! Warning : Invalid command to exec ....");
  gx_tell(text);
}

// What the shell is given.
std::string shell_command(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  std::string command;
  if (text.starts_with(gx_product_word)) {
    command = x_shell_word(gx_view(gx_get_velmoran()));
    text.remove_prefix(gx_product_word.size());
  }
  command += text;
  return command.substr(0, max_command);
}

void wait_and_sync(std::int32_t ms) {
  gx_pause(ms);
  gx_sync();
}

bool next_line(x_shell& shell, gx_string_record_t& line) {
  gx_sync();
  return !shell.is_stopped() && gx_read_one_line(shell.output(), line) && line.len > 0;
}
}  // namespace

void kv_exec_cmd(std::string_view text) {
  if (text.empty() || text.size() > max_text) return refuse_text(text);
  gx_debug("#  kv_exec_cmd : START : \"%.*s\" \n", static_cast<int>(text.size()), text.data());
  const std::string command = shell_command(text);
  wait_and_sync(before_start_ms);
  auto shell = std::make_unique<x_shell>(command.c_str(), kv_stop_asked);
  if (shell->output() == nullptr) {
    gx_report(gx_line_kind::error, "# !!! Error :  Command not found or not executable ?? ");
    gx_tell_detail("# !!!  \"", command, "\" ");
    return refuse_text(command);
  }
  wait_and_sync(after_start_ms);
  gx_tell("# ", std::string_view(command).substr(0, max_shown), " ");
  kv_array_param_t args, vars;
  for (gx_string_record_t line; next_line(*shell, line);) kv_process_command(line, args, vars);
  shell.reset();
  gx_tell("# End of Exec ");
}
