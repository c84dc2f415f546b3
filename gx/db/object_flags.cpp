// Reading and setting the flag bits of an object's status.
#include "gx/db/object_flags.h"

#include "gx/db/object_access.h"
#include "gx/db/undo.h"

namespace {

bool has_flag(const gx_file_gene_recf_t& file, int id, gx_flag flag) {
  return gx_has_flag(gx_object_id_ptr(file, id), flag);
}

void put_flag(const gx_file_gene_recf_t& file, int id, gx_flag flag, bool on) {
  gx_put_flag(gx_object_id_ptr(file, id), flag, on);
}

// The flags whose changes can be taken back: a change of the bit is recorded, nothing else.
void put_flag_with_undo(const gx_file_gene_recf_t& file, int id, gx_flag flag, bool on,
                        gx_undo_op set, gx_undo_op cleared) {
  if (has_flag(file, id, flag) == on) return;
  put_flag(file, id, flag, on);
  // A file outside the slots has no undo entries.
  if (file.file_index >= 1) gx_undo_put_object(file.file_index, id, on ? set : cleared);
}

}  // namespace

bool gx_inq_object_selected(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_selected);
}
bool gx_inq_object_temporary(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_temporary);
}
bool gx_inq_object_create(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_create);
}
bool gx_inq_object_open(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_open);
}
bool gx_inq_object_picked(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_picked);
}
bool gx_inq_object_deleted(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_deleted);
}
bool gx_inq_object_unvisible(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_unvisible);
}
bool gx_inq_object_fixed(const gx_file_gene_recf_t& file, int id) {
  return has_flag(file, id, gx_flag_fixed);
}

void gx_set_object_selected(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag_with_undo(file, id, gx_flag_selected, on, gx_undo_op::selected, gx_undo_op::unselected);
}
void gx_set_object_temporary(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag(file, id, gx_flag_temporary, on);
}
void gx_set_object_create(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag(file, id, gx_flag_create, on);
}
void gx_set_object_open(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag(file, id, gx_flag_open, on);
}
void gx_set_object_picked(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag(file, id, gx_flag_picked, on);
}
void gx_set_object_deleted(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag_with_undo(file, id, gx_flag_deleted, on, gx_undo_op::deleted, gx_undo_op::undeleted);
}
void gx_set_object_unvisible(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag(file, id, gx_flag_unvisible, on);
}
void gx_set_object_fixed(const gx_file_gene_recf_t& file, int id, bool on) {
  put_flag(file, id, gx_flag_fixed, on);
}

void gx_set_child_selected(const gx_file_gene_recf_t& file, int holder, bool on) {
  for (int id = gx_object_id_ptr(file, holder).child1; id >= 1;
       id = gx_object_id_ptr(file, id).following) {
    if (gx_object_id_ptr(file, id).object_type == gx_type::property_2d) {
      gx_set_object_selected(file, id, on);
    }
  }
}

void gx_hide_invisible(const gx_file_gene_recf_t& file) {
  for (int id = 1; id <= file.object_id_max; ++id) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.object_type != gx_type::property_2d || gx_is_deleted(object)) continue;
    if (gx_property_info_ptr(file, id).visible == 0) gx_set_object_unvisible(file, id, true);
  }
}
