// DEFine KEY and STAtus KEY.
#include "app/language/commands.h"
#include "gx/display/keys.h"
#include "gx/text/message_list.h"
#include "gx/text/strings.h"

void kv_define_key_cmd(const kv_command_t& command) {
  if (command.count() != 4) {
    kv_refuse("# DEFine KEY ", command, kv_bad_count, 3);
  } else if (!gx_set_key_action(command.word(3), gx_view(kv_unquote(command.word(4))))) {
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
  } else if (command.count() != 3) {
    kv_refuse("# STAtus KEY ", command, kv_bad_count, 3);
  } else if (!gx_get_key_action(command.word(3), action)) {
    kv_refuse("# STAtus KEY ", command, "# !! Error :  Invalid  KEY name ", 3);
  } else {
    kv_echo(" STAtus KEY ", command, 3);
    gx_tell("# KEY : ", command.word(3), " ", gx_view(action), " ");
  }
}
