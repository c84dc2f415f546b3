// Points and boxes by themselves: turning, moving, tests, and the boxes that objects keep.
// Coordinates of a file may lie anywhere in 32 bits, so sums are made wider and held at the ends.
#include "gx/db/place/geometry.h"

#include "gx/db/object_access.h"
#include "gx/text/kept_text.h"
#include "gx/text/messages/debug.h"

gx_pointreal_t gx_turn(gx_pointreal_t p, int rotate, bool fliph) {
  if (rotate < 0 || rotate > 3) gx_set_status(gx_code::coordonate_conversion_overflow);
  std::int64_t x = p.x, y = p.y;
  for (int turn = 0; turn < rotate; ++turn) {
    const auto old_x = x;
    x = y;
    y = -old_x;
  }
  return {gx_saturated(x), gx_saturated(fliph ? -y : y)};
}

gx_boundsreal_t gx_turn(gx_boundsreal_t box, int rotate, bool fliph) {
  if (gx_bounds_empty(box)) return box;
  const auto a = gx_turn(gx_pointreal_t{box.xmin, box.ymin}, rotate, fliph);
  const auto b = gx_turn(gx_pointreal_t{box.xmax, box.ymax}, rotate, fliph);
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

gx_boundsreal_t gx_move(gx_boundsreal_t box, gx_pointreal_t by) {
  const auto sum = [](std::int32_t a, std::int32_t b) { return gx_saturated(std::int64_t{a} + b); };
  return {sum(box.xmin, by.x), sum(box.ymin, by.y), sum(box.xmax, by.x), sum(box.ymax, by.y)};
}

void gx_include(gx_boundsreal_t& box, gx_pointreal_t p) {
  box.xmin = std::min(box.xmin, p.x);
  box.ymin = std::min(box.ymin, p.y);
  box.xmax = std::max(box.xmax, p.x);
  box.ymax = std::max(box.ymax, p.y);
}

void gx_include(gx_boundsreal_t& box, const gx_boundsreal_t& other) {
  if (gx_bounds_empty(other)) return;
  gx_include(box, gx_pointreal_t{other.xmin, other.ymin});
  gx_include(box, gx_pointreal_t{other.xmax, other.ymax});
}

bool gx_bounds_empty(const gx_boundsreal_t& box) {
  return box.xmin > box.xmax || box.ymin > box.ymax;
}

bool gx_bounds_meet(const gx_boundsreal_t& a, const gx_boundsreal_t& b) {
  return !gx_bounds_empty(a) && !gx_bounds_empty(b) && a.xmin <= b.xmax && b.xmin <= a.xmax &&
         a.ymin <= b.ymax && b.ymin <= a.ymax;
}

bool gx_bounds_overlap(const gx_boundsreal_t& a, const gx_boundsreal_t& b) {
  return !gx_bounds_empty(a) && !gx_bounds_empty(b) && a.xmin < b.xmax && b.xmin < a.xmax &&
         a.ymin < b.ymax && b.ymin < a.ymax;
}

// --- point tests

bool gx_point_inside_bounds16(const gx_bounds16_t& box, int x, int y) {
  if (box.xmin > box.xmax) {
    gx_debug_line(" point_inside_bounds16 : bounds x invalid ");
    gx_set_status(gx_code::viewport_bounds_invalid);
  }
  if (box.ymin > box.ymax) {
    gx_debug_line(" point_inside_bounds16 : bounds y invalid ");
    gx_set_status(gx_code::bounds_invalid);
  }
  return box.xmin < x && x < box.xmax && box.ymin < y && y < box.ymax;
}

namespace {
void check_bounds(const gx_boundsreal_t& box, const char* operation) {
  if (!gx_bounds_empty(box)) return;
  gx_debug(" %s : bounds %c invalid \n", operation, box.xmin > box.xmax ? 'x' : 'y');
  gx_debug("  %d  %d  %d  %d \n", box.xmin, box.ymin, box.xmax, box.ymax);
  gx_set_status(gx_code::viewport_bounds_invalid);
}

bool strictly_inside(const gx_boundsreal_t& box, gx_pointreal_t p) {
  return box.xmin < p.x && p.x < box.xmax && box.ymin < p.y && p.y < box.ymax;
}
}  // namespace

bool gx_point_inside_boundsreal(const gx_boundsreal_t& box, gx_pointreal_t p) {
  check_bounds(box, "point_inside_boundsreal");
  return strictly_inside(box, p);
}

bool gx_point_insideon_boundsreal(const gx_boundsreal_t& box, gx_pointreal_t p) {
  check_bounds(box, "point_insideon_boundsreal");
  return box.xmin <= p.x && p.x <= box.xmax && box.ymin <= p.y && p.y <= box.ymax;
}

bool gx_part_object_outside_bounds(const gx_boundsreal_t& box, const gx_boundsreal_t& outer) {
  // Two opposite corners hold every coordinate of the box.
  return !strictly_inside(outer, {box.xmin, box.ymin}) ||
         !strictly_inside(outer, {box.xmax, box.ymax});
}

bool gx_part_object_outside_father_bounds(const gx_file_gene_recf_t& file, int id, int father,
                                          gx_boundsreal_t& box) {
  const auto& object = gx_object_id_ptr(file, id);
  box = gx_move(object.bounds, object.origin);
  return father != 0 && gx_part_object_outside_bounds(box, gx_object_id_ptr(file, father).bounds);
}

// --- boxes that objects keep

void gx_update_father_bounds(const gx_file_gene_recf_t& file, int id, int father) {
  const auto& object = gx_object_id_ptr(file, id);
  gx_object_id_ptr(file, father).bounds = gx_move(object.bounds, object.origin);
}

void gx_compute_new_object_bounds(const gx_file_gene_recf_t& file, int id, int father) {
  const auto& object = gx_object_id_ptr(file, id);
  auto& outer = gx_object_id_ptr(file, father).bounds;
  const auto box = gx_move(object.bounds, object.origin);
  outer = {std::min(outer.xmin, box.xmin), std::min(outer.ymin, box.ymin),
           std::max(outer.xmax, box.xmax), std::max(outer.ymax, box.ymax)};
}

gx_boundsreal_t gx_property_compute_newbounds(const gx_object_property_rec_t& property) {
  if (property.gene.object_type != gx_type::property_2d) {
    gx_set_status(gx_code::invalid_property_2d);
  }
  const std::int64_t high = property.height;
  const std::int64_t length =
      high * static_cast<std::int64_t>(gx_shown_length(gx_view(property.nvalue)));
  const auto width = gx_saturated(length + length / 5);
  const auto up = gx_saturated(-high), half = gx_saturated(high / 2);
  if (property.rotate == 1) return {up, gx_saturated(-std::int64_t{width}), half, 0};
  if (property.rotate == 3) return {gx_saturated(-(high / 2)), 0, property.height, width};
  return {0, up, width, half};
}
