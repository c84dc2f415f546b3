// The area scan of SELect AREa and UNSelect AREa: instances, then nets, then frames, against
// the pick aperture.
#include "app/sheet/select_area.h"

#include <algorithm>
#include <cstdlib>

#include "app/state.h"
#include "gx/db/owners.h"
#include "gx/db/place/geometry.h"
#include "gx/db/undo.h"
#include "gx/display/sheet/draw.h"
#include "gx/vext.h"

namespace {

struct scan_t {
  gx_file_index_t file_index;
  const gx_file_gene_recf_t& file;
  kv_area_kind kind;
  bool select;  // or unselect
  bool found = false;

  bool wants(std::initializer_list<kv_area_kind> kinds) const {
    return std::ranges::find(kinds, kind) != kinds.end();
  }
  bool done() const { return found && kind == kv_area_kind::first; }
};

// Whether the object is there to be taken and lies in the rectangle.
bool is_hit(const scan_t& scan, int id, int inst) {
  const auto& object = gx_object_id_ptr(scan.file, id);
  if (gx_is_deleted(object) || gx_bounds_empty(object.bounds)) return false;
  if (!scan.select && !gx_is_selected(object)) return false;
  const bool hidden = gx_is_unvisible(object);
  if (object.object_type == gx_type::property_2d && hidden) return false;
  return object.object_type == gx_type::pinpropfam
             ? gx_pin_intersect_pick_aperture(scan.file, id)
             : gx_obj_intersect_pick_aperture(scan.file, id, inst);
}

// The base point goes to the first object taken and on to any nearer to the top left.
void take(scan_t& scan, gx_pointreal_t origin) {
  const auto p = gx_round_snap(origin.x, origin.y);
  const auto& base = gx_vext.base_point;
  if (!scan.found || std::int64_t{p.x} + p.y < std::int64_t{base.x} + base.y) {
    gx_vext.base_point = p;
  }
  scan.found = true;
}

void take_if_hit(scan_t& scan, int id, int inst) {
  if (scan.done() || !is_hit(scan, id, inst)) return;
  gx_set_object_selected(scan.file, id, scan.select);
  take(scan, gx_object_abs_origin(scan.file, id, inst));
}

void scan_properties(scan_t& scan, const gx_owner_t& owner) {
  gx_visit_properties(scan.file, owner, [&](const gx_object_property_rec_t& property) {
    take_if_hit(scan, property.gene.object_id, owner.inst);
  });
}

void scan_instance(scan_t& scan, const gx_owner_t& owner) {
  if (!is_hit(scan, owner.id, 0)) return;
  if (scan.select) {
    kv_select_instance(scan.file_index, owner.id);
  } else {
    gx_set_object_selected(scan.file, owner.id, false);
    const int body = lb_inq_inst_child_id(scan.file, owner.id).bodpropfam;
    if (kv_pext.smash_done && body > 0) {
      gx_set_object_selected(scan.file, body, false);
      gx_set_child_selected(scan.file, body, false);
    }
  }
  take(scan, gx_object_abs_origin(scan.file, owner.id, 0));
}

// A net is hit where one of its segments is, and taken as a whole.
void scan_whole_net(scan_t& scan, int net) {
  for (const int segment : lb_segments(scan.file, net)) {
    if (!is_hit(scan, segment, 0)) continue;
    (scan.select ? lb_select_net : lb_unselect_net)(scan.file_index, net);
    return take(scan, gx_object_abs_origin(scan.file, segment, 0));
  }
}

void scan_vertices(scan_t& scan, int net) {
  for (const int id : lb_segments(scan.file, net)) {
    if (gx_inq_object_deleted(scan.file, id)) continue;
    const auto& segment = gx_segment_info_ptr(scan.file, id);
    for (const int end : {segment.vertex1, segment.vertex2}) {
      if (end > 0 && gx_object_id_ptr(scan.file, end).object_type == gx_type::vertex_2d) {
        take_if_hit(scan, end, 0);
      }
    }
  }
}

void scan_frame(scan_t& scan, int frame) {
  if (!is_hit(scan, frame, 0)) return;
  (scan.select ? lb_select_frame_prim : lb_unselect_frame_prim)(scan.file_index, frame);
  take(scan, gx_object_abs_origin(scan.file, frame, 0));
}

void scan_owner(scan_t& scan, const gx_owner_t& owner) {
  using enum kv_area_kind;
  if (scan.done()) return;
  switch (owner.kind) {
    case gx_owner_kind::body:
    case gx_owner_kind::symbol:
    case gx_owner_kind::pin:
    case gx_owner_kind::symbol_pin:
      if (!scan.wants({all, instances, properties, first})) return;
      if (scan.kind != properties) {
        if (owner.kind == gx_owner_kind::body) scan_instance(scan, owner);
        if (owner.kind == gx_owner_kind::pin) take_if_hit(scan, owner.id, owner.inst);
      }
      break;
    case gx_owner_kind::net:
      if (scan.wants({all, nets, first})) scan_whole_net(scan, owner.id);
      if (scan.wants({all, vertices, first})) scan_vertices(scan, owner.id);
      if (!scan.wants({all, nets, properties, first})) return;
      break;
    case gx_owner_kind::frame:
      if (!scan.wants({all, frames, properties, first})) return;
      if (scan.kind != properties) scan_frame(scan, owner.id);
      break;
    case gx_owner_kind::none:
      return;
  }
  scan_properties(scan, owner);
}

bool scan_area(kv_area_kind kind, gx_file_index_t file_index, gx_pointreal_t p1, gx_pointreal_t p2,
               bool select) {
  const auto middle = [](std::int64_t a, std::int64_t b) { return gx_saturated((a + b) / 2); };
  const auto half = [](std::int64_t a, std::int64_t b) {
    return gx_saturated(std::abs(a - b) / 2);
  };
  gx_pick_set_center(middle(p1.x, p2.x), middle(p1.y, p2.y));
  gx_pick_set_size(half(p1.x, p2.x), half(p1.y, p2.y));
  scan_t scan = {file_index, gx_ptrto_gene_file_buf(file_index), kind, select};
  gx_visit_owners(scan.file, [&](const gx_owner_t& owner) { scan_owner(scan, owner); });
  return scan.found;
}

void clear_marks(const gx_file_gene_recf_t& file, int id) {
  gx_set_object_picked(file, id, false);
  gx_set_object_temporary(file, id, false);
}

}  // namespace

bool kv_select_area(kv_area_kind kind, gx_file_index_t file_index, gx_pointreal_t p1,
                    gx_pointreal_t p2) {
  return scan_area(kind, file_index, p1, p2, true);
}

bool kv_unselect_area(kv_area_kind kind, gx_file_index_t file_index, gx_pointreal_t p1,
                      gx_pointreal_t p2) {
  return scan_area(kind, file_index, p1, p2, false);
}

void kv_unselect_all(gx_file_index_t file_index) {
  gx_undo_define_new_step();
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  for (int id = 1; id <= file.object_id_max; ++id) gx_set_object_selected(file, id, false);
}

void kv_select_instance(gx_file_index_t file_index, int inst) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  gx_set_object_selected(file, inst, true);
  const int body = lb_inq_inst_child_id(file, inst).bodpropfam;
  if (!kv_pext.smash_done || body < 1) return;
  gx_set_object_selected(file, body, true);
  gx_set_child_selected(file, body, true);
}

void kv_setinst_notpicked_nottempo(gx_file_index_t file_index) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  for (const int inst : lb_instances(file)) {
    clear_marks(file, inst);
    if (gx_inq_object_deleted(file, inst)) continue;
    for (const auto [pin, pinpropfam] : lb_pins(file, inst)) clear_marks(file, pinpropfam);
  }
}

void kv_setnet_notpicked_nottempo(gx_file_index_t file_index) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  for (const int net : lb_nets(file)) clear_marks(file, net);
}
