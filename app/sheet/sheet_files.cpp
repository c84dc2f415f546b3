// Opening sheets and symbols into slots.
#include "app/sheet/sheet_files.h"

#include "app/sheet/views.h"
#include "app/state.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/file/link_file.h"
#include "gx/vext.h"

kv_opened kv_open_in_slot(gx_file_index_t& slot, std::string_view directory,
                          std::string_view filetype, std::string& why) {
  const auto version = gx_file_get_file_version(directory, filetype);
  if (!version.found) return kv_opened::missing;
  if (!version.valid) {
    why = version.why;
    return kv_opened::damaged;
  }
  if (slot == 0) {
    if (gx_vext.num_file_open >= gx_max_files) {
      why = "too many files";
      return kv_opened::damaged;
    }
    slot = gx_file_try_open(directory, filetype, why);
    return slot != 0 ? kv_opened::yes : kv_opened::damaged;
  }
  return gx_file_try_reopen(slot, directory, filetype, why) ? kv_opened::yes : kv_opened::damaged;
}

void kv_leave_slot(gx_file_index_t slot) {
  if (slot == 0 || kv_pext.file_id_context != slot || kv_pext.file_id_cur == slot) return;
  kv_pext.file_id_context = kv_pext.file_id_cur;
  kv_display_picture_all(gx_vext.viewport_context, kv_pext.file_id_context);
}
