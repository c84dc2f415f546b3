#include "app/sheet/walk.h"

#include <algorithm>

#include "app/sheet/views.h"
#include "app/state.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/file/link_file.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/db/objects_of.h"
#include "gx/text/at.h"
#include "gx/vext.h"

namespace {

kv_level_follower_t follow_level = nullptr;

}  // namespace

bool kv_is_level(int level) { return level >= 1 && level <= kv_max_levels; }

kv_file_record_t& kv_at_level(int level) { return gx_at(kv_pext.arrayof_file, level - 1); }

gx_string_record_t kv_sheet_directory(const gx_file_gene_recf_t& file, int inst) {
  const auto* instance = gx_object_as<gx_object_instance_rec_t>(file, inst);
  if (instance == nullptr) return {};
  const auto* symbol = gx_object_as<gx_object_symbol_rec_t>(file, instance->symbol);
  if (symbol == nullptr) return {};
  const auto path = gx_get_path_n0version(gx_view(symbol->path));
  return path.error ? gx_string_record_t{} : path.directory;
}

kv_level_open_t kv_open_level(int level, const gx_string_record_t& directory) {
  auto& place = kv_at_level(level);
  kv_level_open_t result;
  result.opened = kv_open_in_slot(place.file_index, gx_view(directory), "sheet", result.why);
  if (result.opened != kv_opened::yes) return result;
  place.file_path = directory;
  kv_pext.file_level_max =
      std::max<std::int16_t>(kv_pext.file_level_max, static_cast<std::int16_t>(level));
  const auto& file = gx_ptrto_gene_file_buf(place.file_index);
  result.why = gx_sheet_fault(file);
  if (result.why.empty()) return result;
  if (file.primary_object == 0) result.why.clear();
  kv_leave_slot(place.file_index);
  result.opened = kv_opened::damaged;
  result.fault = true;
  return result;
}

void kv_stand_at(int level, const gx_string_record_t& path) {
  kv_pext.file_level_cur = static_cast<std::int16_t>(level);
  kv_pext.file_id_cur = kv_at_level(level).file_index;
  kv_pext.cur_sim_path = path;
  gx_hide_invisible(gx_ptrto_gene_file_buf(kv_pext.file_id_cur));
  kv_follow_sheet();
}

void kv_show_level() {
  kv_display_picture_all(gx_vext.viewport_edit, kv_pext.file_id_cur);
  kv_show_title();
}

void kv_follow_sheet() {
  if (follow_level != nullptr) follow_level();
}

void kv_follow_run() {
  if (follow_level == nullptr) return;
  follow_level();
  kv_update_viewport_edit();
  kv_update_viewport_context();
}

void kv_set_level_follower(kv_level_follower_t follower) { follow_level = follower; }

// Opening sheets and symbols into slots.
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
