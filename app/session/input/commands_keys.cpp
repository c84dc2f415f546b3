// DEFine KEY and STAtus KEY.
#include "app/language/command_row.h"
#include "gx/display/input/keys.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"

namespace {

void kv_define_key_cmd(const kv_command_t& command) {
  if (!gx_set_key_action(command.word(3), gx_view(kv_unquote(command.word(4))))) {
    kv_refuse("# DEFine KEY ", command, "# !! Error :  Invalid DEFine KEY ", 3);
  } else {
    kv_echo(" DEFine KEY ", command, 3);
  }
}

void kv_status_key_cmd(const kv_command_t& command) {
  gx_string_record_t action;
  if (command.count() == 2) {
    kv_echo(" STAtus KEY ", command, 3);
    gx_status_key_all();
  } else if (!gx_get_key_action(command.word(3), action)) {
    kv_refuse("# STAtus KEY ", command, "# !! Error :  Invalid  KEY name ", 3);
  } else {
    kv_echo(" STAtus KEY ", command, 3);
    gx_tell("# KEY : ", command.word(3), " ", gx_view(action), " ");
  }
}

constexpr kv_command_row_t key_rows[] = {
    // clang-format off
    {{"DEF", "KEY"}, "DEFine KEY name 'command'", kv_define_key_cmd, "# DEFine KEY ", 3},
    {{"STA", "KEY"}, "STAtus KEY [name]", kv_status_key_cmd, "# STAtus KEY ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_key_commands() { return key_rows; }
