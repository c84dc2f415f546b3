// Whole objects and all below them, and the pictures of a viewport.
#include "gx/display/sheet/draw_object.h"

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/draw_shape.h"
#include "gx/display/sheet/grid.h"
#include "gx/display/sheet/highlight.h"
#include "gx/display/sheet/markers.h"
#include "gx/display/sheet/probe.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/offscreen.h"
#include "gx/display/viewports.h"
#include "gx/picture/object_shapes.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
bool has_segment_in_view(const gx_picture_t& picture, int net_id) {
  const auto& file = *picture.file;
  for (int id = gx_inq_first_net_segment_id(file, net_id); id > 0;
       id = gx_inq_next_net_segment_id(file, net_id, id))
    if (!gx_is_deleted(gx_object_id_ptr(file, id)) &&
        gx_part_object_inside_vp_bounds(picture.vpid, file, id, 0))
      return true;
  return false;
}

// Calls visit(instance, pin, pinpropfam) for the pins of a net that are not deleted.
template <typename Visit>
void visit_pins(const gx_file_gene_recf_t& file, int net_id, Visit visit) {
  for (const int inst : lb_instances(file)) {
    if (gx_inq_object_deleted(file, inst)) continue;
    for (const auto [pin, pinpropfam] : lb_pins(file, inst)) {
      const auto* const family = gx_object_as<gx_object_pinpropfam_rec_t>(file, pinpropfam);
      if (family != nullptr && family->net == net_id && !gx_inq_object_deleted(file, pinpropfam))
        visit(inst, pin, pinpropfam);
    }
  }
}

// Of a marked net without a wire in view: its pins and texts in the colour of the mark, and its
// name at the first pin where there is room for it.
void draw_mark_without_wire(const gx_picture_t& picture, int net_id, const gx_highlight_t& mark) {
  const auto& file = *picture.file;
  gx_sink_t sink = gx_screen_sink(picture);
  sink.draw = [&](const gx_shape_t& shape) { gx_draw_shape(picture, shape, &mark); };
  for (int id = gx_inq_first_net_property_id(file, net_id); id > 0;
       id = gx_inq_next_net_property_id(file, net_id, id))
    if (!gx_is_deleted(gx_object_id_ptr(file, id))) gx_primitive_shape(file, id, 0, false, sink);
  bool is_named = mark.name.len < 1;
  visit_pins(file, net_id, [&](int inst, int pin, int pinpropfam) {
    gx_tree_shapes(file, pinpropfam, inst, false, sink);
    gx_tree_shapes(file, pin, inst, false, sink);
    if (is_named) return;
    gx_display_probe_rec_t probe;
    probe.name = mark.name;
    probe.vertex = static_cast<gx_object_id_t>(pinpropfam);
    is_named = gx_probe_fits(picture.vpid, picture.file_index, probe);
    if (is_named) gx_display_probe(picture.vpid, picture.file_index, probe);
  });
}

// The name of a marked net, at the first end of a segment where there is room for it.
void draw_mark(const gx_picture_t& picture, int net_id, const gx_highlight_t& mark) {
  const auto& file = *picture.file;
  const bool is_net = gx_object_id_ptr(file, net_id).object_type == gx_type::net;
  if (is_net && !has_segment_in_view(picture, net_id))
    return draw_mark_without_wire(picture, net_id, mark);
  if (mark.name.len < 1) return;
  gx_display_probe_rec_t probe;
  probe.name = mark.name;
  const auto is_end = [&](int id) {
    if (!gx_object_id_ok(file, id)) return false;
    const gx_type type = gx_object_id_ptr(file, id).object_type;
    return type == gx_type::vertex_2d || type == gx_type::pinpropfam;
  };
  if (is_end(mark.vertex)) {
    probe.vertex = mark.vertex;
  } else {
    gx_object_id_t first = 0, fitting = 0;
    for (int id = gx_inq_first_net_segment_id(file, net_id); id > 0 && fitting == 0;
         id = gx_inq_next_net_segment_id(file, net_id, id)) {
      if (gx_is_deleted(gx_object_id_ptr(file, id))) continue;
      const auto& segment = gx_segment_info_ptr(file, id);
      for (const gx_object_id_t end : {segment.vertex1, segment.vertex2}) {
        if (fitting != 0) break;
        if (first == 0) first = end;
        probe.vertex = end;
        if (gx_probe_fits(picture.vpid, picture.file_index, probe)) fitting = end;
      }
    }
    probe.vertex = fitting != 0 ? fitting : first;
  }
  if (probe.vertex != 0) gx_display_probe(picture.vpid, picture.file_index, probe);
}

void show_object(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                 gx_draw_mode mode, bool force_selected, const char* operation) {
  gx_set_grid_visibility(file_index, vpid);
  if (!gx_vext.display_on) return;
  gx_vext.pick_ap_new = true;
  if (gx_viewport_rec(vpid).vp_blocked) {
    gx_debug(" %s  : view port blocked : %d\n", operation, vpid);
    gx_set_status(gx_code::viewport_blocked);
  }
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const gx_picture_t picture{vpid, file_index, &file, mode};
  gx_tree_shapes(file, object_id, inst_id, force_selected, gx_screen_sink(picture));
}

// Makes the object the root of the viewport's picture.
gx_file_gene_recf_t& set_root(gx_vpid_t vpid, gx_file_index_t file_index, int object_id) {
  auto& file = gx_ptrto_gene_file_buf(file_index);
  auto& vp = gx_viewport_rec(vpid);
  gx_object_id_ptr(file, object_id);
  vp.object_id = static_cast<gx_object_id_t>(object_id);
  vp.file_index = file_index;
  file.displayed = static_cast<std::uint8_t>(vpid);
  gx_vext.cur_file = file_index;
  return file;
}

// The primary object of the file that the viewport shows.
int primary_of(gx_vpid_t vpid) {
  const auto& file = gx_ptrto_gene_file_buf(gx_viewport_rec(vpid).file_index);
  if (!gx_object_id_ok(file, file.primary_object)) gx_set_status(gx_code::object_id_invalid);
  return file.primary_object;
}

bool may_show(gx_vpid_t vpid) { return gx_drawing_possible() && gx_is_picture_viewport(vpid); }
}  // namespace

gx_sink_t gx_screen_sink(const gx_picture_t& picture) {
  gx_sink_t sink{.name = "gx_display", .instance_name = "LB_DISPLAY_ONE_INST"};
  sink.draw = [&picture](const gx_shape_t& shape) { gx_draw_shape(picture, shape); };
  sink.sees = [&picture](int id, int inst) {
    return !gx_viewport_rec(picture.vpid).vp_blocked &&
           gx_part_object_inside_vp_bounds(picture.vpid, *picture.file, id, inst);
  };
  if (gx_theme().has_roles) {  // what is joined needs no sign
    sink.marks_pin = [&picture](int pinpropfam) {
      const auto* const family =
          gx_object_as<gx_object_pinpropfam_rec_t>(*picture.file, pinpropfam);
      return family == nullptr || family->net == 0;
    };
  }
  sink.opens = [&picture](int id) {
    if (gx_object_id_ptr(*picture.file, id).object_type != gx_type::net) return;
    const auto* const probe = gx_net_info_ptr(*picture.file, id).ptrto_probe;
    if (probe != nullptr) gx_display_probe(picture.vpid, picture.file_index, *probe);
  };
  sink.closes = [&picture](int id) {
    const auto* const mark = gx_highlight_of(picture.file_index, id);
    if (mark != nullptr && !picture.erases()) draw_mark(picture, id, *mark);
  };
  return sink;
}

void gx_display_object(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                       bool keep_scale, gx_draw_mode mode, bool force_selected) {
  if (!gx_drawing_possible()) return;
  const auto& file = set_root(vpid, file_index, object_id);
  if (!keep_scale) gx_viewport_fit(vpid, gx_object_abs_origin_bounds(file, object_id, 0).bounds);
  show_object(vpid, file_index, object_id, inst_id, mode, force_selected, "gx_display_object");
}

void gx_display_object_part(gx_vpid_t vpid, gx_file_index_t file_index, int object_id,
                            gx_pointreal_t p1, gx_pointreal_t p2, int inst_id, gx_draw_mode mode,
                            bool force_selected) {
  if (!gx_drawing_possible()) return;
  set_root(vpid, file_index, object_id);
  gx_viewport_fit(vpid, gx_area_of(p1, p2));
  show_object(vpid, file_index, object_id, inst_id, mode, force_selected, "gx_display_object_part");
}

void gx_viewport_refresh(gx_vpid_t vpid, bool force_selected) {
  if (!gx_drawing_possible()) return;
  primary_of(vpid);
  const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
  gx_clear_viewport(vpid);
  gx_viewport_refresh_partial(vpid, force_selected);
}

void gx_viewport_refresh_partial(gx_vpid_t vpid, bool force_selected) {
  if (!gx_drawing_possible()) return;
  const int primary = primary_of(vpid);
  gx_display_object(vpid, gx_viewport_rec(vpid).file_index, primary, 0, true, gx_draw_mode::draw,
                    force_selected);
}

void gx_display_picture_all(gx_vpid_t vpid, gx_file_index_t file_index) {
  if (!may_show(vpid)) return;
  gx_forget_marks(vpid);
  const int primary = gx_ptrto_gene_file_buf(file_index).primary_object;
  const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
  gx_viewport_select(vpid);
  gx_clear_viewport(vpid);
  gx_display_object(vpid, file_index, primary, 0, false, gx_draw_mode::draw, false);
  gx_display_half_cross(vpid, gx_vext.base_point);
}

void gx_display_picture_area(gx_vpid_t vpid, gx_file_index_t file_index, gx_pointreal_t p1,
                             gx_pointreal_t p2) {
  if (!may_show(vpid)) return;
  gx_forget_marks(vpid);
  const int primary = gx_ptrto_gene_file_buf(file_index).primary_object;
  const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
  gx_viewport_select(vpid);
  gx_clear_viewport(vpid);
  gx_display_object_part(vpid, file_index, primary, p1, p2, 0, gx_draw_mode::draw, false);
  gx_display_half_cross(vpid, gx_vext.base_point);
}

void gx_display_prim(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                     gx_draw_mode mode, bool force_selected) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, object_id, mode, "gx_display_prim");
  const gx_batch_t batch;
  gx_primitive_shape(*picture.file, object_id, inst_id, force_selected, gx_screen_sink(picture));
}

void gx_display_pin(gx_vpid_t vpid, gx_file_index_t file_index, int pin_id, int inst_id,
                    gx_draw_mode mode, bool force_selected) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, pin_id, mode, "gx_display_pin");
  const gx_batch_t batch;
  gx_pin_shape(*picture.file, pin_id, inst_id, force_selected, gx_screen_sink(picture));
}

void gx_display_net(gx_vpid_t vpid, gx_file_index_t file_index, int net_id, gx_draw_mode mode) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, net_id, mode, "gx_display_net");
  if (!gx_vext.display_on) return;
  const gx_batch_t batch;
  gx_net_shapes(*picture.file, net_id, gx_screen_sink(picture));
}
