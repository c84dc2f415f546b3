// LIST OBJect: the dump of the objects of the sheet in view.
#include "app/language/commands.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/files.h"

void kv_list_object_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# LIST OBJect ";
  if (command.count() != 2) return kv_refuse(refused, command, kv_bad_count, 3);
  if (kv_pext.file_id_cur < 1) return kv_refuse(refused, command, kv_no_sheet, 3);
  gx_object_list(kv_pext.file_id_cur);
  kv_echo(" LIST OBJect ", command, 3);
}
