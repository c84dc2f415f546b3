// Commands about files: command files, compiled procedures, texts shown.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "app/language/answers.h"
#include "app/language/command_table.h"
#include "app/language/do_file.h"
#include "app/language/interpreter.h"
#include "gx/text/arguments.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"
#include "platform/files.h"
#include "platform/procedures.h"
#include "platform/symbol_table.h"
#include "platform/words.h"

namespace {
// How the two procedure commands differ.
struct procedure_command_t {
  std::string_view keyword;  // as it echoes itself
  std::string_view prefix;   // of the symbol name
  const char* not_found;     // to the debug file
  std::string_view end;      // said afterwards; empty: the echo again
};
constexpr procedure_command_t dobin = {"# DOBin ", "kvp_",
                                       "!!! DOBin Entry not found : \"%.*s\" \n", ""};
constexpr procedure_command_t dodirbin = {
    "# DODIRectbin ", "", "!!! DODIRectbin Entry not found : \"%.*s\" \n", "# End of DODIRectbin "};
// Only what was written as an entry may be called: any other function expects other arguments.
constexpr char own_executable[] = "";
constexpr std::string_view entry_section = "kv_procedures";

void call_procedure(const procedure_command_t& kind, const kv_command_t& command) {
  gx_string_record_t symbol;
  gx_concat_all(symbol, kind.prefix, command.word(2));
  const auto address = xm_get_extid_offset(own_executable, symbol.char_, entry_section);
  if (address == 0) {
    gx_debug(kind.not_found, static_cast<int>(command.word(2).size()), command.word(2).data());
    kv_echo(kind.keyword, command);
    return gx_report(gx_line_kind::error, "# !!! Error : Procedure Entry not found : \"",
                     command.word(2), "\" ");
  }
  kv_echo(kind.keyword, command);
  // Entry 0 holds a blank and word 3, entry k word k + 3.
  const auto args = kv_arguments(command);
  auto count = static_cast<std::int16_t>(command.count() - 2);
  if (count > 0) {
    gx_string_record_t first = gx_string(" ");
    gx_concat_line(args->front(), first);
    args->front() = first;
  }
  xprocargexe(address, &count, args->data());
  if (kind.end.empty()) {
    kv_echo(kind.keyword, command);
  } else {
    gx_tell(kind.end);
  }
}

gx_string_record_t help_path(std::string_view file) {
  gx_string_record_t path = gx_get_velmoran();
  gx_concat_all(path, "/kivo/help/", file);
  return path;
}

bool help_exists(std::string_view file) {
  std::error_code error;
  return std::filesystem::exists(gx_view(help_path(file)), error);
}

// Shows a help file of the product directory; refuses with `error` and the path when missing.
void show_help(const kv_command_t& command, std::string_view file, std::string_view error) {
  const gx_string_record_t path = help_path(file);
  if (gx_display_file_invplist(gx_view(path))) return kv_echo(" HELp ", command);
  kv_refuse("# HELp ", command, error);
  gx_tell_detail("# !! : \"", gx_view(path), "\" ");
}

// The help file of the command that the word means: one that it would run, else the first whose
// word it begins.
std::string help_file_of(std::string_view typed) {
  for (const bool runs : {true, false}) {
    for (const auto& row : kv_command_table()) {
      const auto word = row.syntax.substr(0, row.syntax.find(' '));
      const bool fits = row.exact == 0 || row.exact == typed.size();
      if (!(runs ? fits && gx_equal(row.keywords[0], typed) : gx_equal(typed, word))) continue;
      return "kv_1_" + gx_upper(word);
    }
  }
  return {};
}

void kv_dobin_cmd(const kv_command_t& command) { call_procedure(dobin, command); }

void kv_dodirbin_cmd(const kv_command_t& command) { call_procedure(dodirbin, command); }

void kv_help_cmd(const kv_command_t& command) {
  if (command.count() == 1)
    return show_help(command, "list_commands",
                     "# !! Error :  List of commands for Help not found ? ");
  std::string file = "kv_1_" + std::string(command.word(2));
  if (const std::string meant = help_file_of(command.word(2));
      !help_exists(file) && !meant.empty() && help_exists(meant)) {
    file = meant;
  }
  show_help(command, file, "# !! Error :  Help on this command not found ? ");
}

void kv_showfile_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SHOw FILe ";
  if (!gx_display_file_invplist(kv_file_name(command.word(3)), kv_stop_asked)) {
    const int error = errno;
    kv_refuse(refused, command, "# !! Error : File not found  or Invalid ? ", 3);
    if (error != 0 && !x_is_missing(error)) gx_tell_detail("# !! ", x_why(error));
    return;
  }
  kv_echo(" SHOw FILe ", command, 3);
}

constexpr kv_command_row_t file_rows[] = {
    // clang-format off
    {{"DO"}, "DO file [word ...]", kv_do_cmd, "# DO ", 2, 2},
    {{"DOB"}, "DOBin name [word ...]", kv_dobin_cmd, "# DOBin "},
    {{"DODIR"}, "DODIRectbin name [word ...]", kv_dodirbin_cmd, "# DODIRectbin "},
    {{"HEL"}, "HELp [word]", kv_help_cmd, "# HELp "},
    {{"SHO", "FIL"}, "SHOw FILe path", kv_showfile_cmd, "# SHOw FILe ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_file_commands() { return file_rows; }
