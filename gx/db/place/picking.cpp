// The pick aperture, and which objects meet it, a point or the part of a design that is shown.
#include "gx/db/place/picking.h"

#include "gx/db/file/file_state.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/session_state.h"

namespace {

void check_package() {
  if (!gx_session.init_done && gx_files.num_file_open == 0) {
    gx_set_status(gx_code::init_or_open_file_not_done);
  }
}

void set_aperture(gx_pointreal_t center, gx_pointreal_t size) {
  gx_files.pick_ap_center = center;
  gx_files.pick_ap_size = size;
  gx_files.pick_ap_bounds = gx_move({-size.x, -size.y, size.x, size.y}, center);
  gx_files.pick_ap_new = true;
}

// Of the others only the objects that hold something can be hit.
bool can_be_hit(const gx_object_gene_rec_t& object) {
  return gx_is_primitive(object.object_type) || object.object_type == gx_type::segment ||
         object.child1 > 0;
}

gx_boundsreal_t snapped(const gx_boundsreal_t& box) {
  const auto low = gx_round_snap(box.xmin, box.ymin), high = gx_round_snap(box.xmax, box.ymax);
  return {low.x, low.y, high.x, high.y};
}

void check_boxes(const gx_object_gene_rec_t& object, const gx_boundsreal_t& aperture,
                 const gx_boundsreal_t& box) {
  if (!gx_bounds_empty(box) && !gx_bounds_empty(aperture)) return;
  gx_debug(" gx_obj_intersect_pick_aperture : error in bounds : obj_id : %d\n", object.object_id);
  gx_debug("    : type : %15s\n", gx_type_name(object.object_type).data());
  gx_debug(" p_bounds : %8d  %8d  %8d  %8d\n", aperture.xmin, aperture.ymin, aperture.xmax,
           aperture.ymax);
  gx_debug(" abs_bounds : %8d  %8d  %8d  %8d\n", box.xmin, box.ymin, box.xmax, box.ymax);
  gx_set_status(gx_code::file_data_invalid);
}

}  // namespace

void gx_pick_set_center(std::int32_t x, std::int32_t y) {
  check_package();
  set_aperture({x, y}, gx_files.pick_ap_size);
}

void gx_pick_set_size(std::int32_t w, std::int32_t h) {
  check_package();
  if (w < 0 || h < 0) gx_set_status(gx_code::pick_aperture_size_invalid);
  set_aperture(gx_files.pick_ap_center, {w, h});
}

gx_pointreal_t gx_pick_inq_center() { return gx_files.pick_ap_center; }
gx_pointreal_t gx_pick_inq_size() { return gx_files.pick_ap_size; }

bool gx_obj_intersect_pick_aperture(const gx_file_gene_recf_t& file, int id, int inst) {
  const auto& object = gx_object_id_ptr(file, id);
  if (!can_be_hit(object)) return false;
  const auto box = gx_object_abs_origin_bounds(file, id, inst).bounds;
  const auto& aperture = gx_files.pick_ap_bounds;
  check_boxes(object, aperture, box);
  if (gx_is_primitive(object.object_type)) return gx_bounds_meet(box, aperture);
  return gx_bounds_meet(snapped(box), snapped(aperture));
}

bool gx_pin_intersect_pick_aperture(const gx_file_gene_recf_t& file, int pinpropfam) {
  return gx_bounds_meet(gx_pin_abs_origin_bounds(file, pinpropfam).bounds, gx_files.pick_ap_bounds);
}

bool gx_point_inside_obj_absbounds(const gx_file_gene_recf_t& file, int id, int inst,
                                   gx_pointreal_t p) {
  const auto& object = gx_object_id_ptr(file, id);
  if (!gx_is_primitive(object.object_type) && object.child1 < 1) return false;
  const auto box = gx_object_abs_origin_bounds(file, id, inst).bounds;
  if (gx_bounds_empty(box)) {
    gx_debug("  gx_point_inside_obj_absbounds : error in bounds : obj_id : %d\n", id);
    gx_debug("    : type : %15s\n", gx_type_name(object.object_type).data());
    gx_debug(" gx_point_inside_obj_absbounds  :  abs_bounds : %8d  %8d  %8d  %8d\n", box.xmin,
             box.ymin, box.xmax, box.ymax);
    gx_set_status(gx_code::file_data_invalid);
  }
  return gx_point_inside_boundsreal(box, p);
}
