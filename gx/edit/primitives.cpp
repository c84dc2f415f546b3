// Each constructor stores its points relative to the first one, finds its box, and makes the boxes
// of its fathers hold it.
#include "gx/edit/primitives.h"

#include <algorithm>
#include <cmath>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/edit/vertex_lists.h"
#include "gx/text/strings.h"

namespace {

gx_pointreal_t minus(gx_pointreal_t a, gx_pointreal_t b) {
  return {gx_saturated(std::int64_t{a.x} - b.x), gx_saturated(std::int64_t{a.y} - b.y)};
}

gx_boundsreal_t box_of(std::span<const gx_pointreal_t> points) {
  auto box = gx_empty_bounds;
  for (const auto& p : points) {
    box = {std::min(box.xmin, p.x), std::min(box.ymin, p.y), std::max(box.xmax, p.x),
           std::max(box.ymax, p.y)};
  }
  return box;
}

gx_boundsreal_t box_of(gx_pointreal_t a, gx_pointreal_t b) {
  const gx_pointreal_t points[] = {a, b};
  return box_of(points);
}

// Stores origin and box (both in the father's coordinates) and passes the box on to the fathers.
gx_boundsreal_t store_box(gx_object_gene_rec_t& object, gx_pointreal_t origin,
                          const gx_boundsreal_t& box) {
  const auto& file = gx_construction_file();
  object.origin = origin;
  object.bounds = gx_move(box, minus({}, origin));
  for (int id = object.object_id; gx_object_id_ptr(file, id).father > 0;) {
    const int father = gx_object_id_ptr(file, id).father;
    gx_compute_new_object_bounds(file, id, father);
    id = father;
  }
  return box;
}

std::uint8_t byte(int v) { return static_cast<std::uint8_t>(v); }
std::int16_t word(int v) { return static_cast<std::int16_t>(v); }

template <typename Rec>
gx_boundsreal_t make_polyline(gx_code misfit, int style, int color,
                              std::span<const gx_pointreal_t> points) {
  auto& line = gx_record_to_fill<Rec>(misfit);
  if (points.empty() || points.size() > Rec::max_points) gx_set_status(misfit);
  line.line_style = word(style);
  line.line_color = byte(color);
  line.n_points = word(static_cast<int>(points.size()));
  line.points[0] = points[0];
  for (std::size_t i = 1; i < points.size(); ++i) line.points[i] = minus(points[i], points[0]);
  return store_box(line.gene, points[0], box_of(points));
}

// The circle through three points; radius 0 when they lie on one line.
struct arc_circle_t {
  gx_pointreal_t center;
  std::int32_t rad = 0;
  bool counterclockwise = true;  // from the first over the second to the third, on the screen
};

arc_circle_t circle_through(gx_pointreal_t p1, gx_pointreal_t p2, gx_pointreal_t p3) {
  const double ax = double(p2.x) - p1.x, ay = double(p2.y) - p1.y;
  const double bx = double(p3.x) - p1.x, by = double(p3.y) - p1.y;
  const double cross = ax * by - ay * bx;
  if (cross == 0) return {p1, 0, true};
  const double aa = ax * ax + ay * ay, bb = bx * bx + by * by;
  const double cx = (by * aa - ay * bb) / (2 * cross), cy = (ax * bb - bx * aa) / (2 * cross);
  const auto whole = [](double v) {
    return static_cast<std::int32_t>(std::lround(std::clamp(v, -1e9, 1e9)));
  };
  return {{whole(p1.x + cx), whole(p1.y + cy)}, whole(std::sqrt(cx * cx + cy * cy)), cross < 0};
}

std::int32_t angle_at(gx_pointreal_t center, gx_pointreal_t p) {
  const auto d = minus(p, center);
  return gx_atan(gx_saturated(-std::int64_t{d.y}), d.x);  // y grows downwards on the screen
}

gx_boundsreal_t arc_box(gx_boundsreal_t box, const arc_circle_t& circle, std::int32_t angle1,
                        std::int32_t angle2) {
  const auto [x, y] = circle.center;
  const auto r = std::int64_t{circle.rad};
  for (std::int32_t angle = 0; angle <= 2 * gx_full_turn; angle += gx_full_turn / 4) {
    if (angle < angle1 || angle > angle2) continue;
    switch (angle % gx_full_turn / (gx_full_turn / 4)) {
      case 0:
        box.xmax = gx_saturated(x + r);
        break;
      case 1:
        box.ymin = gx_saturated(y - r);
        break;
      case 2:
        box.xmin = gx_saturated(x - r);
        break;
      default:
        box.ymax = gx_saturated(y + r);
    }
  }
  return box;
}

}  // namespace

gx_boundsreal_t gx_line_2dreal(int style, int color, int width, gx_pointreal_t pt1,
                               gx_pointreal_t pt2) {
  auto& line = gx_record_to_fill<gx_object_line_rec_t>(gx_code::invalid_line_2d);
  line.line_style = word(style);
  line.line_color = byte(color);
  line.line_width = byte(width);
  line.pt2 = minus(pt2, pt1);
  return store_box(line.gene, pt1, box_of(pt1, pt2));
}

gx_boundsreal_t gx_rectangle_2dreal(int style, int color, gx_pointreal_t pt1, gx_pointreal_t pt2,
                                    bool filled, int fill_color) {
  auto& rectangle = gx_record_to_fill<gx_object_rectangle_rec_t>(gx_code::invalid_rectangle_2d);
  rectangle.line_style = word(style);
  rectangle.line_color = byte(color);
  rectangle.filled = filled;
  rectangle.fill_color = byte(fill_color);
  rectangle.pt2 = minus(pt2, pt1);
  return store_box(rectangle.gene, pt1, box_of(pt1, pt2));
}

gx_boundsreal_t gx_circle_real(int style, int color, bool filled, gx_pointreal_t center,
                               std::int32_t radius) {
  auto& circle = gx_record_to_fill<gx_object_circle_rec_t>(gx_code::invalid_circle_2d);
  if (radius < 0) gx_set_status(gx_code::invalid_circle_2d);
  circle.border_style = word(style);
  circle.border_color = circle.fill_color = byte(color);
  circle.filled = filled;
  circle.rad = radius;
  return store_box(circle.gene, center, gx_move({-radius, -radius, radius, radius}, center));
}

gx_boundsreal_t gx_arc_through(gx_object_arc_rec_t& arc, gx_pointreal_t pt1, gx_pointreal_t pt2,
                               gx_pointreal_t pt3) {
  const auto circle = circle_through(pt1, pt2, pt3);
  arc.pt2 = minus(pt2, pt1);
  arc.pt3 = minus(pt3, pt1);
  arc.center = minus(circle.center, pt1);
  arc.rad = circle.rad;
  arc.angle1 = arc.angle2 = 0;
  const gx_pointreal_t points[] = {pt1, pt2, pt3};
  auto box = box_of(points);
  if (circle.rad > 0) {
    arc.angle1 = angle_at(circle.center, circle.counterclockwise ? pt1 : pt3);
    arc.angle2 = angle_at(circle.center, circle.counterclockwise ? pt3 : pt1);
    if (arc.angle2 <= arc.angle1) arc.angle2 += gx_full_turn;
    box = arc_box(box, circle, arc.angle1, arc.angle2);
  }
  return box;
}

gx_boundsreal_t gx_arc3p_2dreal(gx_pointreal_t pt1, gx_pointreal_t pt2, gx_pointreal_t pt3,
                                int style, int color) {
  auto& arc = gx_record_to_fill<gx_object_arc_rec_t>(gx_code::invalid_arc3p_2d);
  arc.border_style = word(style);
  arc.border_color = byte(color);
  return store_box(arc.gene, pt1, gx_arc_through(arc, pt1, pt2, pt3));
}

gx_boundsreal_t gx_grid_real(gx_pointreal_t corner, gx_pointreal_t opposite,
                             std::int32_t step_point, std::int32_t step_pin, bool grid_on,
                             bool snap_on) {
  auto& grid = gx_record_to_fill<gx_object_grid_rec_t>(gx_code::invalid_grid_2d);
  grid.opposite_pt = minus(opposite, corner);
  grid.step_point = step_point;
  grid.step_pin = step_pin;
  grid.grid_on = grid_on;
  grid.snap_on = snap_on;
  return store_box(grid.gene, corner, box_of(corner, opposite));
}

gx_boundsreal_t gx_polyline5_2dreal(int style, int color, std::span<const gx_pointreal_t> points) {
  return make_polyline<gx_object_polyline5_rec_t>(gx_code::invalid_polyline5_2d, style, color,
                                                  points);
}

gx_boundsreal_t gx_polyline_2dreal(int style, int color, std::span<const gx_pointreal_t> points) {
  return make_polyline<gx_object_polyline_rec_t>(gx_code::invalid_polyline_2d, style, color,
                                                 points);
}

void gx_tag(std::string_view name, std::string_view value) {
  auto& tag = gx_record_to_fill<gx_object_tag_rec_t>(gx_code::invalid_tag);
  tag.name = gx_name(name);
  tag.nvalue = gx_value(value);
}

gx_boundsreal_t gx_property_2dreal(std::string_view name, std::string_view value,
                                   gx_pointreal_t position, const gx_property_look_t& look) {
  auto& property = gx_record_to_fill<gx_object_property_rec_t>(gx_code::invalid_property_2d);
  property.name = gx_name(name);
  property.nvalue = gx_value(value);
  property.height = look.height;
  property.rotate = byte(look.rotate & 3);
  property.line_color = byte(look.color);
  property.fixed = look.fixed;
  property.visible = look.visible;
  return store_box(property.gene, position,
                   gx_move(gx_property_compute_newbounds(property), position));
}

void gx_vertex_2dreal(std::int32_t x, std::int32_t y) {
  auto& vertex = gx_record_to_fill<gx_object_vertex_rec_t>(gx_code::object_type_invalid);
  vertex.dotted = 0;
  vertex.reserved = 0;
  vertex.net = 0;
  store_box(vertex.gene, {x, y}, {x, y, x, y});
  gx_put_vertex_list(gx_construction_file(), vertex.gene.object_id);
}

gx_boundsreal_t gx_segment(int style, int color, int width, int vertex1, int vertex2) {
  const auto& file = gx_construction_file();
  auto& segment = gx_record_to_fill<gx_object_segment_rec_t>(gx_code::file_data_invalid);
  if (!gx_object_id_ok(file, vertex1) || !gx_object_id_ok(file, vertex2)) {
    gx_set_status(gx_code::file_data_invalid);
  }
  const auto place = [&file](int end) {
    return gx_object_id_ptr(file, end).object_type == gx_type::pinpropfam
               ? gx_pin_abs_origin(file, end)
               : gx_object_abs_origin(file, end, 0);
  };
  segment.line_style = word(style);
  segment.line_color = byte(color);
  segment.line_width = byte(width);
  segment.vertex1 = gx_object_id_ptr(file, vertex1).object_id;
  segment.vertex2 = gx_object_id_ptr(file, vertex2).object_id;
  const auto p1 = place(vertex1), p2 = place(vertex2);
  const auto box = store_box(segment.gene, p1, box_of(p1, p2));
  gx_put_segment_list(file, segment.gene.object_id);
  return box;
}
