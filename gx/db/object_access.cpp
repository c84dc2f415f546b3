// The checked ways from a file slot to its record and from an object id to the object, and the
// fields of the file header that others read and set.
#include "gx/db/object_access.h"

#include "gx/db/file/file_state.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"

gx_file_gene_recf_t& gx_ptrto_gene_file_buf(gx_file_index_t file_index) {
  if (file_index < 1 || file_index > gx_files.num_file_open || file_index > gx_max_files) {
    gx_debug_line(" ## error 1 in gx_ptrto_gene_file_buf ");
    gx_set_status(gx_code::init_or_open_file_not_done);
  }
  const auto& slot = gx_at(gx_files.filear, file_index);
  if (slot.start_buf_ptr == nullptr) {
    gx_debug_line(" ## error 2 in gx_ptrto_gene_file_buf ");
    gx_set_status(gx_code::file_index_invalid);
  }
  return *slot.start_buf_ptr;
}

void gx_object_id_refused(const gx_file_gene_recf_t& file, int id) {
  gx_debug_line(id > gx_max_object_id
                    ? " ## error in gx_object_id_ptr ( obj_id > gx_max_object_id )"
                : id < 1 ? " ## error in gx_object_id_ptr ( obj_id < 1 )"
                         : " ## error in gx_object_id_ptr ( obj_id > object_id_max )");
  gx_debug(" ## error in gx_object_id_ptr : file_index : %d\n", file.file_index);
  gx_debug(" ## error in gx_object_id_ptr : obj_id : %d\n", id);
  gx_set_status(gx_code::object_id_invalid);
}

void gx_object_type_refused(const gx_object_gene_rec_t& object, gx_type type) {
  const auto is = gx_type_name(object.object_type);
  const auto wanted = gx_type_name(type);
  gx_trace(" ## error in gx_object_info_ptr : obj_id : ", object.object_id, "  type : ", is,
           "  instead of : ", wanted);
  gx_set_status(gx_code::object_type_invalid);
}

gx_object_id_t gx_file_inq_max_object_id(const gx_file_gene_recf_t& file) {
  return file.object_id_max;
}

gx_object_id_t gx_file_inq_primary_object(const gx_file_gene_recf_t& file) {
  return file.primary_object;
}

void gx_file_set_primary_object(gx_file_gene_recf_t& file, int id) {
  gx_files.cur_file = file.file_index;
  if (file.object_id_max > gx_max_object_id) gx_set_status(gx_code::too_many_objects);
  if (!gx_object_id_ok(file, id)) gx_set_status(gx_code::object_id_invalid);
  file.primary_object = static_cast<gx_object_id_t>(id);
}

void gx_file_select(gx_file_index_t file_index) {
  gx_ptrto_gene_file_buf(file_index);
  gx_files.cur_file = file_index;
}

gx_boundsreal_t gx_file_inq_bounds(const gx_file_gene_recf_t& file) {
  return gx_object_id_ptr(file, file.primary_object).bounds;
}
