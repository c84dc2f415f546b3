#include "gx/edit/vertex_lists.h"

#include <algorithm>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/edit/edit_state.h"
#include "gx/text/messages/debug.h"

namespace {

constexpr int cells = 8;

std::size_t cell_of(std::int32_t v, std::int32_t size) {
  if (size <= 0) return 0;
  return static_cast<std::size_t>(
      std::clamp<std::int64_t>(std::int64_t{cells} * v / size, 0, cells - 1));
}

using cell_lists_t = decltype(gx_edit.vertex_list_ar);

void put(cell_lists_t& lists, const gx_file_gene_recf_t& file, const gx_object_gene_rec_t& object) {
  const auto page = gx_inq_page_dim(file);
  const auto at = gx_object_abs_origin(file, object.object_id, 0);
  lists[cell_of(at.x, page.x)][cell_of(at.y, page.y)].push_back(object.object_id);
}

void put_checked(cell_lists_t& lists, const gx_file_gene_recf_t& file, int id, gx_type type,
                 const char* operation) {
  if (file.file_index != 1 || !gx_edit.vertex_list_to_do) return;
  if (!gx_object_id_ok(file, id)) gx_set_status(gx_code::file_id_invalid);
  const auto& object = gx_object_id_ptr(file, id);
  gx_check_object_type(object, type);
  if (gx_is_deleted(object)) {
    gx_debug(" %s : warning : object deleted : %d\n", operation, id);
    return;
  }
  put(lists, file, object);
}

}  // namespace

void gx_put_vertex_list(const gx_file_gene_recf_t& file, int vertex) {
  put_checked(gx_edit.vertex_list_ar, file, vertex, gx_type::vertex_2d, "gx_put_vertex_list");
}

void gx_put_segment_list(const gx_file_gene_recf_t& file, int segment) {
  put_checked(gx_edit.segment_list_ar, file, segment, gx_type::segment, "gx_put_segment_list");
}

void gx_init_vertex_segment_list(gx_file_index_t file_index) {
  if (file_index != 1) {
    gx_debug(" gx_init_vertex_segment_list : file_index:%d ???? error !!  <> 1 \n", file_index);
    return;
  }
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  for (auto* lists : {&gx_edit.vertex_list_ar, &gx_edit.segment_list_ar}) {
    for (auto& column : *lists) {
      for (auto& cell : column) cell.clear();
    }
  }
  for (const auto* object : file.ptr_to_ar_objindex) {
    if (gx_is_deleted(*object)) continue;
    if (object->object_type == gx_type::vertex_2d) put(gx_edit.vertex_list_ar, file, *object);
    if (object->object_type == gx_type::segment) put(gx_edit.segment_list_ar, file, *object);
  }
}
