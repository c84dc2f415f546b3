#include "gx/vector/path_data.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

#include "gx/db/place/geometry.h"
#include "gx/vector/look.h"

gx_look_t gx_look_of(const gx_shape_t& shape) {
  gx_look_t look;
  look.color = shape.color >= 0 && shape.color < gx_nb_of_inks ? shape.color : gx_nb_of_inks - 1;
  look.filled =
      shape.kind == gx_shape_kind::dot || (shape.kind == gx_shape_kind::box && shape.filled);
  if (look.filled) return look;
  if (!gx_dashes(shape.style).empty()) look.style = shape.style;
  look.width = shape.width > 1 ? shape.width : 1;
  return look;
}

bool gx_has_path(const gx_shape_t& shape) {
  switch (shape.kind) {
    case gx_shape_kind::line:
    case gx_shape_kind::polyline:
      return shape.points.size() >= 2;
    case gx_shape_kind::dot:
      return shape.size > 0;
    case gx_shape_kind::arc:
    case gx_shape_kind::circle:
    case gx_shape_kind::box:
      return true;
    case gx_shape_kind::text:
    case gx_shape_kind::page:
    case gx_shape_kind::loose_pin:
    case gx_shape_kind::selected_vertex:
      break;
  }
  return false;
}

void gx_path_data::add(const gx_shape_t& shape, gx_pointreal_t origin) {
  origin_ = origin;
  switch (shape.kind) {
    case gx_shape_kind::line:
    case gx_shape_kind::polyline:
      for (std::size_t i = 0; i < shape.points.size(); ++i) add_point(i > 0, shape.points[i]);
      return;
    case gx_shape_kind::arc:
      return add_arc(shape);
    case gx_shape_kind::circle:
      return add_circle(shape.points[0], shape.size);
    case gx_shape_kind::box:
      return add_box(shape.points[0], shape.points[1]);
    case gx_shape_kind::dot: {
      const std::int32_t r = shape.size;
      const auto box = gx_move({-r, -r, r, r}, shape.points[0]);
      return add_box({box.xmin, box.ymin}, {box.xmax, box.ymax});
    }
    case gx_shape_kind::text:
    case gx_shape_kind::page:
    case gx_shape_kind::loose_pin:
    case gx_shape_kind::selected_vertex:
      return;
  }
}

void gx_path_data::append(std::int32_t x, std::int32_t y) {
  gx_append_units(path_, std::int64_t{x} - origin_.x);
  path_ += ' ';
  gx_append_units(path_, std::int64_t{y} - origin_.y);
}

void gx_path_data::add_point(bool is_next, gx_pointreal_t p) {
  if (is_next && p.y == last_.y) {
    path_ += 'H';
    gx_append_units(path_, std::int64_t{p.x} - origin_.x);
  } else if (is_next && p.x == last_.x) {
    path_ += 'V';
    gx_append_units(path_, std::int64_t{p.y} - origin_.y);
  } else {
    path_ += is_next ? 'L' : 'M';
    append(p.x, p.y);
  }
  last_ = p;
}

void gx_path_data::add_arc_to(gx_pointreal_t p, std::int32_t radius, bool is_large,
                              bool is_clockwise) {
  path_ += 'A';
  gx_append_units(path_, radius);
  path_ += ' ';
  gx_append_units(path_, radius);
  path_.append(is_large ? " 0 1 " : " 0 0 ").append(is_clockwise ? "1 " : "0 ");
  append(p.x, p.y);
  last_ = p;
}

void gx_path_data::add_box(gx_pointreal_t p, gx_pointreal_t q) {
  add_point(false, p);
  add_point(true, {q.x, p.y});
  add_point(true, q);
  add_point(true, {p.x, q.y});
  path_ += 'Z';
}

void gx_path_data::add_circle(gx_pointreal_t centre, std::int32_t radius) {
  const gx_pointreal_t left{gx_saturated(std::int64_t{centre.x} - radius), centre.y};
  const gx_pointreal_t right{gx_saturated(std::int64_t{centre.x} + radius), centre.y};
  add_point(false, left);
  add_arc_to(right, radius, true, true);
  add_arc_to(left, radius, true, true);
}

void gx_path_data::add_arc(const gx_shape_t& arc) {
  if (std::abs(arc.extent) >= gx_full_turn) return add_circle(arc.points[3], arc.size);
  const auto at = [&](std::int32_t angle) -> gx_pointreal_t {
    const double a = angle * std::numbers::pi / (gx_full_turn / 2.0);
    return {gx_saturated(arc.points[3].x + std::llround(arc.size * std::cos(a))),
            gx_saturated(arc.points[3].y - std::llround(arc.size * std::sin(a)))};
  };
  add_point(false, at(arc.start));
  add_arc_to(at(arc.start + arc.extent), arc.size, std::abs(arc.extent) > gx_full_turn / 2,
             arc.extent < 0);
}
