// Whole objects and all below them, and the pictures of a viewport.
#include "gx/display/draw_object.h"

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/db/picture_walk.h"
#include "gx/display/draw_net.h"
#include "gx/display/draw_prim.h"
#include "gx/display/draw_steps.h"
#include "gx/display/grid.h"
#include "gx/display/markers.h"
#include "gx/display/offscreen.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

namespace {
// Draws an object without what is below it; a net whole.
void draw_one(const gx_picture_t& picture, int id, int inst_id, bool force_selected) {
  const gx_type type = gx_object_id_ptr(*picture.file, id).object_type;
  if (type == gx_type::net)
    gx_draw_net(picture, id);
  else if (type == gx_type::pin)
    gx_draw_pin(picture, id, inst_id, force_selected);
  else if (gx_is_drawn_primitive(type))
    gx_draw_prim(picture, id, inst_id, force_selected);
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
  gx_draw_tree({vpid, file_index, &file, mode}, object_id, inst_id, force_selected);
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

void gx_draw_tree(const gx_picture_t& picture, int object_id, int inst_id, bool force_selected) {
  const auto& file = *picture.file;
  const gx_type type = gx_object_id_ptr(file, object_id).object_type;
  if (type == gx_type::grid_2d) {
    gx_draw_grid(picture, object_id);
    return;
  }
  if (type == gx_type::net) gx_set_status(gx_code::invalid_level);
  if (!gx_part_object_inside_vp_bounds(picture.vpid, file, object_id, inst_id)) return;
  draw_one(picture, object_id, inst_id, force_selected);
  gx_walk_below(file, object_id, [&](int id) { draw_one(picture, id, inst_id, force_selected); });
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
