// From positions relative to fathers to absolute ones, and through the instance that places a
// symbol on a sheet.
#include "gx/db/place/placement.h"

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"

namespace {

gx_pointreal_t sum(gx_pointreal_t a, gx_pointreal_t b) {
  return {gx_saturated(std::int64_t{a.x} + b.x), gx_saturated(std::int64_t{a.y} + b.y)};
}

// Placed objects are relative to the nearest of these.
bool is_frame_of_reference(gx_type type) {
  return type == gx_type::component || type == gx_type::instance || type == gx_type::symbol ||
         type == gx_type::net;
}

struct walk_t {
  gx_pointreal_t origin;  // sum of the origins below the stop
  int stop = 0;           // frame of reference; 0: the walk went to the root
};

walk_t walk_up(const gx_file_gene_recf_t& file, const gx_object_gene_rec_t& object, bool placed) {
  std::int64_t x = object.origin.x, y = object.origin.y;
  int id = object.father;
  while (id > 0) {
    const auto& father = gx_object_id_ptr(file, id);
    if (placed && is_frame_of_reference(father.object_type)) break;
    x += father.origin.x;
    y += father.origin.y;
    id = father.father;
  }
  return {{gx_saturated(x), gx_saturated(y)}, id};
}

void check_ids(const gx_file_gene_recf_t& file, const gx_object_gene_rec_t& object, int inst) {
  if (inst > file.object_id_max) {
    gx_debug(" !! error : gx_object_abs_origin_bounds : inst_id : %d\n", inst);
    gx_set_status(gx_code::object_id_invalid);
  }
  if (inst > 0 && object.object_type == gx_type::instance) {
    gx_debug(" !! error : gx_object_abs_origin_bounds : obj_id & inst_id : %d%10d\n",
             object.object_id, inst);
    gx_set_status(gx_code::object_id_invalid);
  }
}

const gx_object_instance_rec_t& placing_instance(const gx_file_gene_recf_t& file, int inst) {
  const auto& instance = gx_instance_info_ptr(file, inst);
  if (instance.rotate > 3) {
    gx_debug_line(" gx_object_abs_origin_bounds ( instanced ) : inst.rotate invalid ?");
    gx_set_status(gx_code::coordonate_conversion_overflow);
  }
  return instance;
}

// The text of a property stays readable: where its anchor lies within the placed box.
gx_pointreal_t readable_anchor(gx_pointreal_t p, const gx_boundsreal_t& box, int turns,
                               bool fliph) {
  const gx_pointreal_t across = {gx_saturated(std::int64_t{box.xmin} + box.xmax - p.x),
                                 gx_saturated(std::int64_t{box.ymin} + box.ymax - p.y)};
  if (fliph) return turns == 0 ? gx_pointreal_t{p.x, across.y} : gx_pointreal_t{across.x, p.y};
  return turns == 2 ? across : p;
}

}  // namespace

gx_placed_t gx_object_abs_origin_bounds(const gx_file_gene_recf_t& file, int id, int inst) {
  if (!gx_object_id_ok(file, id)) {
    gx_debug(" !! error : gx_object_abs_origin_bounds : obj_id  : %d\n", id);
    gx_set_status(gx_code::object_id_invalid);
  }
  const auto& object = gx_object_id_ptr(file, id);
  check_ids(file, object, inst);
  const auto walk = walk_up(file, object, inst > 0);
  if (inst <= 0) {
    auto box = object.bounds;
    if (object.object_type == gx_type::instance) {
      const auto& instance = placing_instance(file, id);
      box = gx_turn(box, instance.rotate, instance.fliph != 0);
    }
    return {walk.origin, gx_move(box, walk.origin)};
  }

  const auto& instance = placing_instance(file, inst);
  if (walk.stop != instance.symbol && walk.stop != inst) {
    gx_debug(" gx_object_abs_origin_bounds : symbol<>father: %12d    %12d\n", instance.symbol,
             walk.stop);
    gx_set_status(gx_code::object_id_invalid);
  }
  const bool fliph = instance.fliph != 0;
  const auto offset = gx_turn(walk.origin, instance.rotate, fliph);
  const auto box = gx_turn(object.bounds, instance.rotate, fliph);
  gx_placed_t placed = {sum(offset, instance.gene.origin),
                        gx_move(gx_move(box, offset), instance.gene.origin)};
  if (object.object_type == gx_type::property_2d) {
    const int turns = (instance.rotate + gx_property_info_ptr(file, id).rotate) % 4;
    placed.origin = readable_anchor(placed.origin, placed.bounds, turns, fliph);
  }
  return placed;
}

gx_pointreal_t gx_object_abs_origin(const gx_file_gene_recf_t& file, int id, int inst) {
  return gx_object_abs_origin_bounds(file, id, inst).origin;
}

gx_placed_t gx_pin_abs_origin_bounds(const gx_file_gene_recf_t& file, int pinpropfam) {
  const auto& pin = gx_object_id_ptr(file, pinpropfam);
  if (gx_is_deleted(pin)) gx_set_status(gx_code::file_data_invalid);
  gx_check_object_type(pin, gx_type::pinpropfam);
  const int inst = gx_object_id_ptr(file, pin.father).father;
  gx_check_object_type(gx_object_id_ptr(file, inst), gx_type::instance);
  return gx_object_abs_origin_bounds(file, pinpropfam, inst);
}

gx_pointreal_t gx_pin_abs_origin(const gx_file_gene_recf_t& file, int pinpropfam) {
  return gx_pin_abs_origin_bounds(file, pinpropfam).origin;
}

void gx_arc_abs_difang(const gx_file_gene_recf_t& file, int inst, std::int32_t& angle1,
                       std::int32_t& angle2) {
  if (inst == 0 || gx_object_id_ptr(file, inst).object_type != gx_type::instance) return;
  const auto& instance = gx_instance_info_ptr(file, inst);
  if (instance.rotate > 3) {
    gx_debug_line(" gx_arc_abs_difang ( instanced ) : inst.rotate invalid ?");
    gx_set_status(gx_code::coordonate_conversion_overflow);
  }
  constexpr std::int32_t turn_of[] = {0, gx_full_turn / 4, gx_full_turn / 2, -gx_full_turn / 4};
  const std::int64_t turn = turn_of[instance.rotate];
  for (auto* angle : {&angle1, &angle2}) {
    *angle = gx_saturated(instance.fliph != 0 ? -turn - *angle : turn + *angle);
  }
}

gx_pointreal_t gx_viewport_dpt_obj2d_inst(const gx_file_gene_recf_t& file, int inst,
                                          gx_pointreal_t p0, gx_pointreal_t d) {
  if (inst > file.object_id_max) {
    gx_debug(" gx_viewport_dpt_obj2d_inst : inst_id : %12d\n", inst);
    gx_set_status(gx_code::object_id_invalid);
  }
  if (inst > 0 && gx_object_id_ptr(file, inst).object_type == gx_type::instance) {
    const auto& instance = gx_instance_info_ptr(file, inst);
    if (instance.rotate > 3) {
      gx_debug_line(" gx_viewport_dpt_obj2d_inst  ( instanced ) : inst.rotate invalid ?");
      gx_set_status(gx_code::coordonate_conversion_overflow);
    }
    d = gx_turn(d, instance.rotate, instance.fliph != 0);
  }
  return {gx_saturated(std::int64_t{p0.x} + d.x), gx_saturated(std::int64_t{p0.y} + d.y)};
}
