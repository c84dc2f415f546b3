#include "gx/db/place/segment_ends.h"

#include "gx/db/object_access.h"
#include "gx/db/place/placement.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"

gx_segment_end_t gx_net_segment_t::end(int which) const {
  const auto& record = gx_segment_info_ptr(file, segment);
  const int id = which == 1 ? record.vertex1 : record.vertex2;
  const auto* const object = gx_object_id_ok(file, id) ? &gx_object_id_ptr(file, id) : nullptr;
  const auto type = object != nullptr ? object->object_type : gx_type::nil;
  const bool deleted = object != nullptr && gx_is_deleted(*object);
  if (!deleted && type == gx_type::vertex_2d)
    return {gx_object_abs_origin(file, id, 0), false, gx_vertex_info_ptr(file, id).dotted != 0,
            gx_is_selected(*object)};
  if (!deleted && type == gx_type::pinpropfam)
    return {gx_pin_abs_origin(file, id), true, gx_pinpropfam_info_ptr(file, id).dotted != 0,
            gx_is_selected(*object)};
  const auto name = gx_type_name(type);
  gx_debug(" %s : vertex%d_id %s !! : %d  %15.*s   net_id : %d   segment_id :%d\n", operation,
           which, deleted ? "deleted" : "invalid", id, static_cast<int>(name.size()), name.data(),
           net, segment);
  gx_set_status(gx_code::object_id_invalid);
}

void gx_net_segment_t::check_width() const {
  const auto& record = gx_segment_info_ptr(file, segment);
  if (record.line_width >= 1) return;
  gx_debug(" %s : line_width  invalid !! : %d     net_id : %d   segment_id :%d\n", operation,
           record.line_width, net, segment);
  gx_set_status(gx_code::invalid_line_2d);
}
