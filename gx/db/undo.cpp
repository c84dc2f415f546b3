#include "gx/db/undo.h"

#include <cstdio>

#include "gx/db/file/file_state.h"
#include "gx/db/object_access.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/session_state.h"

namespace {

// What lies further back than so many changes is given up, so that a long session does not grow.
constexpr std::size_t max_entries = 100000;

// The entry that follows the current one, fresh.
gx_undo_objet_rec_t& append(gx_undo_op operation) {
  auto& list = *gx_undo.undo_list;
  if (list.used == list.entries.size()) list.entries.emplace_back();
  auto& entry = list.entries[list.used++];
  entry = {};
  entry.operation = operation;
  entry.previous = gx_undo.ptrto_undo_cur;
  if (entry.previous != nullptr) entry.previous->following = &entry;
  gx_undo.ptrto_undo_cur = &entry;
  return entry;
}

void store_base_point(gx_undo_objet_rec_t& entry) {
  entry.UU.emplace<gx_undo_placement_t>().old_point = gx_undo.base_point;
}

}  // namespace

void gx_undo_init(gx_file_index_t file_index) {
  if (file_index >= 1 && file_index <= gx_files.num_file_open) {
    const auto& file = gx_ptrto_gene_file_buf(file_index);
    gx_files.check_data_done = file.check_data_done;
    gx_session.num_errors = file.num_errors;
  }
  gx_undo.undo_list = std::make_shared<gx_undo_list_t>();
  gx_undo.ptrto_undo_cur = nullptr;
  auto& entry = append(gx_undo_op::start);
  store_base_point(entry);
  gx_undo.ptrto_undo_start = &entry;
}

void gx_undo_define_new_step() {
  gx_files.check_data_done = 1;
  if (gx_session.debugfile != nullptr) std::fflush(gx_session.debugfile);
  std::fflush(stdin);
  if (!gx_undo.undo_list) return;
  if (gx_undo.undo_list->used > max_entries) {  // the list begins anew
    gx_undo.undo_list->used = 1;
    gx_undo.ptrto_undo_cur = gx_undo.ptrto_undo_start;
    gx_undo.ptrto_undo_start->following = nullptr;
  }
  auto& entry = append(gx_undo_op::step);
  entry.new_step = true;
  store_base_point(entry);
}

gx_undo_objet_rec_t* gx_undo_put_object(gx_file_index_t file_index, int id, gx_undo_op operation) {
  if (file_index < 1 || id < 1) {
    gx_debug_line("\n# gx_undo_put_object : invalid id ");
    gx_set_status(gx_code::file_data_invalid);
  }
  const auto& object = gx_object_id_ptr(gx_ptrto_gene_file_buf(file_index), id);
  if (!gx_undo.undo_list) return nullptr;
  auto& entry = append(operation);
  entry.file_index = file_index;
  entry.object_id = object.object_id;
  if (operation == gx_undo_op::bus) entry.UU.emplace<gx_undo_bus_t>();
  return &entry;
}
