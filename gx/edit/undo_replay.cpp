#include "gx/edit/undo_replay.h"

#include "gx/db/file/file_state.h"
#include "gx/db/object_access.h"
#include "gx/db/undo.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"

namespace {

enum class direction { undo, redo };

constexpr const char* name_of(direction way) {
  return way == direction::undo ? "gx_undo_restore_one_step" : "gx_redo_restore_one_step";
}

void check_entry(const gx_undo_objet_rec_t& entry, direction way) {
  const bool in_file = entry.file_index >= 1 && entry.file_index <= gx_files.num_file_open &&
                       gx_at(gx_files.filear, entry.file_index).start_buf_ptr &&
                       gx_object_id_ok(gx_ptrto_gene_file_buf(entry.file_index), entry.object_id);
  if (in_file && entry.parity == gx_undo_parity) return;
  gx_debug("\n# %s : file_id or obj_id or codes invalid\n", name_of(way));
  gx_debug(" file_index : %d\n obj_id : %d\n parity : %d\n operation : %d\n", entry.file_index,
           entry.object_id, entry.parity, static_cast<int>(entry.operation));
  gx_set_status(gx_code::file_data_invalid);
}

void put_switches(const gx_file_gene_recf_t& file, const gx_undo_objet_rec_t& entry,
                  direction way) {
  const auto& values = std::get<gx_undo_placement_t>(entry.UU);
  auto& property = gx_property_info_ptr(file, entry.object_id);
  const bool back = way == direction::undo;
  property.fixed = back ? values.old_fixed : values.new_fixed;
  property.visible = back ? values.old_visible : values.new_visible;
  gx_put_flag(property.gene, gx_flag_unvisible, back ? values.set_unvisible : !values.new_visible);
}

void put_bus(const gx_file_gene_recf_t& file, const gx_undo_objet_rec_t& entry, direction way) {
  const auto& values = std::get<gx_undo_bus_t>(entry.UU);
  auto& net = gx_net_info_ptr(file, entry.object_id);
  const bool back = way == direction::undo;
  net.is_bus = back ? values.old_is_bus : values.new_is_bus;
  net.bus_start = back ? values.old_bus_start : values.new_bus_start;
  net.bus_end = back ? values.old_bus_end : values.new_bus_end;
}

void replay(const gx_undo_objet_rec_t& entry, direction way) {
  check_entry(entry, way);
  const auto& file = gx_ptrto_gene_file_buf(entry.file_index);
  auto& object = gx_object_id_ptr(file, entry.object_id);
  const bool forward = way == direction::redo;
  switch (entry.operation) {
    case gx_undo_op::deleted:
      return gx_put_flag(object, gx_flag_deleted, forward);
    case gx_undo_op::undeleted:
      return gx_put_flag(object, gx_flag_deleted, !forward);
    case gx_undo_op::selected:
      return gx_put_flag(object, gx_flag_selected, forward);
    case gx_undo_op::unselected:
      return gx_put_flag(object, gx_flag_selected, !forward);
    case gx_undo_op::created:
      return gx_put_flag(object, gx_flag_deleted, !forward);
    case gx_undo_op::switches:
      return put_switches(file, entry, way);
    case gx_undo_op::bus:
      return put_bus(file, entry, way);
    case gx_undo_op::start:
    case gx_undo_op::step:
      break;
  }
  gx_debug("## error in %s : operation 2 invalid\n", name_of(way));
  gx_set_status(gx_code::object_id_invalid);
}

void check_list(direction way) {
  if (gx_undo.ptrto_undo_start != nullptr && gx_undo.ptrto_undo_cur != nullptr) return;
  gx_debug("# %s : start_ptr = nil \n", name_of(way));
  gx_set_status(gx_code::file_data_invalid);
}

}  // namespace

bool gx_undo_restore_one_step() {
  check_list(direction::undo);
  auto& cur = gx_undo.ptrto_undo_cur;
  if (cur == gx_undo.ptrto_undo_start) return false;
  bool at_marker = false;
  while (!at_marker && cur != gx_undo.ptrto_undo_start) {
    at_marker = cur->new_step;
    if (!at_marker) replay(*cur, direction::undo);
    if (cur->previous == nullptr) {
      gx_debug_line("## error in gx_undo_restore_one_step : ptr_cur.prev = nil ");
      gx_set_status(gx_code::file_data_invalid);
    }
    cur = cur->previous;
    --gx_undo.undo_list->used;
  }
  return true;
}

bool gx_redo_restore_one_step() {
  check_list(direction::redo);
  auto& cur = gx_undo.ptrto_undo_cur;
  if (cur->following == nullptr) return false;
  do {
    cur = cur->following;
    ++gx_undo.undo_list->used;
    if (!cur->new_step) replay(*cur, direction::redo);
  } while (cur->following != nullptr && !cur->following->new_step);
  return true;
}
