#include "app/language/do_file.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include "app/language/answers.h"
#include "app/language/interpreter.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"
#include "platform/files.h"

namespace {
constexpr std::int16_t max_do_depth = 10;
constexpr std::string_view keyword = "# DO ";

void refuse_do(const kv_command_t& command, std::string_view error) {
  kv_echo(keyword, command);
  gx_report(gx_line_kind::error, error);
}

void refuse_name(const kv_command_t& command, std::string_view error) {
  refuse_do(command,
            std::string(error).append("\"").append(kv_file_name(command.word(2))).append("\" "));
}
}  // namespace

std::unique_ptr<kv_array_param_t> kv_arguments(const kv_command_t& command) {
  auto args = std::make_unique<kv_array_param_t>();
  const auto values = command.words.subspan(std::min<std::size_t>(2, command.words.size()));
  std::copy(values.begin(), values.end(), args->begin());
  return args;
}

void kv_do_cmd(const kv_command_t& command) {
  const auto depth = static_cast<std::int16_t>(std::max<int>(gx_vext.do_ind, 0) + 1);
  if (depth > max_do_depth)
    return refuse_name(command, "# !!! Error : too many level of DO FILE : ");
  const x_file file(gx_popen_file(kv_file_name(command.word(2)), 'R', true));
  const int error = errno;
  if (!file) {
    gx_vext.do_ind = depth;  // until the line or the file that says so has ended
    if (x_is_missing(error)) return refuse_name(command, "# !!! Error : file not found : ");
    refuse_name(command, "# !!! Error : impossible to open the file : ");
    return gx_tell_detail("# !! ", x_why(error));
  }
  if (gx_is_session_file(fileno(file.get())))
    return refuse_do(command, "# !! Error : File not found  or Invalid ? ");
  gx_vext.do_ind = depth;
  auto& slot = gx_at(gx_vext.commandfile, depth - 1);
  slot = file.get();
  const auto args = kv_arguments(command), vars = std::make_unique<kv_array_param_t>();
  kv_echo(keyword, command);
  for (gx_string_record_t line; !kv_stop_asked() && gx_read_one_line(file.get(), line);)
    kv_process_command(line, *args, *vars);
  slot = nullptr;
  gx_vext.do_ind = static_cast<std::int16_t>(depth - 1);
  gx_tell("# End of DO ");
}

void kv_do_words(std::span<const gx_string_record_t> words, kv_array_param_t& args,
                 kv_array_param_t& vars) {
  std::vector<gx_string_record_t> command = {gx_string("DO")};
  command.insert(command.end(), words.begin(), words.end());
  command.resize(std::min(command.size(), kv_max_words));
  const auto depth = gx_vext.do_ind;
  gx_list_follow();
  kv_do_cmd({command, args, vars});
  gx_vext.do_ind = depth;
}

void kv_process_line(const gx_string_record_t& line, kv_array_param_t& args,
                     kv_array_param_t& vars) {
  const auto depth = gx_vext.do_ind;
  kv_process_command(line, args, vars);
  gx_vext.do_ind = depth;
}
