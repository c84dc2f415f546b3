// The primitives: arcs, circles, lines, polylines, rectangles and property texts; and pins.
#include "gx/display/draw_prim.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/display/clipping.h"
#include "gx/display/draw_steps.h"
#include "gx/display/grid.h"
#include "gx/display/screen_state.h"
#include "gx/display/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

namespace {
constexpr int largest_diamond = 5;        // radius in pixels; larger circles are round
constexpr int largest_server_arc = 6000;  // radius; the box of a larger one leaves 16 bits
constexpr std::int32_t full_circle = 23040;
constexpr int pin_color = 1;

// A primitive on its way to the screen.
struct item_t {
  const gx_picture_t& picture;
  int inst = 0;
  bool selected = false;
  gx_pointreal_t origin;  // absolute

  gx_vpid_t vpid() const { return picture.vpid; }
  int color(int own) const { return gx_drawn_color(picture, own, selected); }
  int style(int own) const {
    if (own < 0 || own >= gx_nb_of_styles) gx_set_status(gx_code::invalid_style);
    return selected ? gx_selected_style : own;
  }
  gx_point16_t pixel() const { return gx_viewport_pt_real_to_pixel(vpid(), origin); }
  // A point given relative to the origin.
  gx_point16_t pixel(gx_pointreal_t relative) const {
    return gx_viewport_pt_real_to_pixel(
        vpid(), gx_viewport_dpt_obj2d_inst(*picture.file, inst, origin, relative));
  }
  int pixels(std::int32_t length) const { return gx_viewport_obj2d_to_pixel(vpid(), length); }
};

std::int16_t moved(std::int16_t v, int by) {
  return static_cast<std::int16_t>(std::clamp(v + by, -32768, 32767));
}

void draw_diamond(const item_t& item, int color, int style, gx_point16_t centre, int r) {
  const gx_point16_t left{moved(centre.x, -r), centre.y}, right{moved(centre.x, r), centre.y};
  const gx_point16_t low{centre.x, moved(centre.y, r)}, high{centre.x, moved(centre.y, -r)};
  gx_draw_polyline(item.vpid(), color, style, std::array{left, low, right, high, left});
}

// Angles in 1/64 degree, counterclockwise; the extent within one turn.
void draw_round(const item_t& item, int color, int style, gx_point16_t centre, int r,
                std::int32_t angle, std::int32_t extent) {
  if (r <= largest_server_arc) {
    gx_pen_arc(color, style, {centre.x - r, centre.y - r, 2 * r, angle, extent});
    return;
  }
  // Chords that leave the circle by less than half a pixel.
  constexpr double radians = 3.14159265358979323846 / 11520.0;
  const double step = 2.0 * std::acos(1.0 - 0.5 / r);
  const int chords = std::max(1, static_cast<int>(std::fabs(extent * radians) / step) + 1);
  const auto point = [&](int i) -> gx_point16_t {
    const double a = (angle + static_cast<double>(extent) * i / chords) * radians;
    return {moved(centre.x, static_cast<int>(std::lround(r * std::cos(a)))),
            moved(centre.y, -static_cast<int>(std::lround(r * std::sin(a))))};
  };
  for (int i = 0; i < chords; ++i) gx_draw_line(item.vpid(), color, style, point(i), point(i + 1));
}

bool is_straight(gx_point16_t a, gx_point16_t b) { return a.x == b.x || a.y == b.y; }

// An angle of a file: less than one turn below 0 and two turns above are left as they are.
std::int32_t reduced(std::int32_t angle) {
  return angle < 0 || angle >= 2 * full_circle ? angle % full_circle : angle;
}

void draw_arc(const item_t& item, const gx_object_arc_rec_t& arc) {
  const gx_point16_t p1 = item.pixel(), p2 = item.pixel(arc.pt2), p3 = item.pixel(arc.pt3);
  if (!gx_arc_clipping(item.vpid(), p1, p2, p3)) return;
  const gx_point16_t centre = item.pixel(arc.center);
  const int r = item.pixels(arc.rad), color = item.color(arc.border_color);
  if (r > largest_diamond) {
    std::int32_t angle1 = reduced(arc.angle1), angle2 = reduced(arc.angle2);
    gx_arc_abs_difang(*item.picture.file, item.inst, angle1, angle2);
    const std::int32_t extent = std::clamp(angle2 - angle1, -full_circle, full_circle);
    draw_round(item, color, 0, centre, r, reduced(angle1) % full_circle, extent);
  } else if (is_straight(p1, p2) && is_straight(p2, p3)) {
    draw_diamond(item, color, 0, centre, r);
  } else {
    gx_draw_polyline(item.vpid(), color, 0, std::array{p1, p2, p3});
  }
}

void draw_circle(const item_t& item, const gx_object_circle_rec_t& circle) {
  const gx_point16_t centre = item.pixel();
  const int r = item.pixels(circle.rad);
  if (!gx_circle_clipping(item.vpid(), centre, r)) return;
  const int color = item.color(circle.border_color), style = item.style(circle.border_style);
  if (r > largest_diamond)
    draw_round(item, color, style, centre, r, 0, full_circle);
  else
    draw_diamond(item, color, style, centre, r);
}

void draw_line(const item_t& item, const gx_object_line_rec_t& line) {
  if (line.line_width < 1) gx_set_status(gx_code::invalid_line_2d);
  gx_draw_thick_line(item.vpid(), item.color(line.line_color), item.style(line.line_style),
                     item.pixel(), item.pixel(line.pt2), line.line_width);
}

// The first point is the origin itself; the others are relative to it.
template <typename Polyline>
void draw_polyline(const item_t& item, const Polyline& polyline, int style) {
  std::array<gx_point16_t, Polyline::max_points> points;
  const int count = std::min<int>(polyline.n_points, Polyline::max_points);
  if (count < 2) return;
  points[0] = item.pixel();
  for (std::size_t i = 1; i < static_cast<std::size_t>(count); ++i)
    points[i] = item.pixel(polyline.points[i]);
  gx_draw_polyline(item.vpid(), item.color(polyline.line_color), style,
                   std::span(points.data(), static_cast<std::size_t>(count)));
}

void draw_rectangle(const item_t& item, const gx_object_rectangle_rec_t& rectangle) {
  const gx_point16_t p = item.pixel(), q = item.pixel(rectangle.pt2);
  const int color = item.color(rectangle.line_color);
  if (rectangle.filled != 0) {
    if (gx_filled_rectangle_clipping(item.vpid(), p, q))
      gx_pen_box(color, std::min(p.x, q.x), std::min(p.y, q.y), std::abs(q.x - p.x),
                 std::abs(q.y - p.y));
    return;
  }
  const std::array<gx_point16_t, 5> outline{p, {q.x, p.y}, q, {p.x, q.y}, p};
  gx_draw_polyline(item.vpid(), color, item.style(rectangle.line_style), outline);
}

void draw_property(const item_t& item, const gx_object_property_rec_t& property) {
  int rotation = property.rotate % 4;
  if (item.inst >= 2) {
    const auto& instance = gx_instance_info_ptr(*item.picture.file, item.inst);
    rotation = (rotation + instance.rotate) % 4;
    if (instance.fliph != 0 && rotation % 2 == 1) rotation = 4 - rotation;
  }
  const gx_point16_t anchor = item.pixel();
  gx_text(item.vpid(), gx_view(property.nvalue), anchor.x, anchor.y, item.pixels(property.height),
          rotation, item.color(property.line_color));
}
}  // namespace

void gx_draw_prim(const gx_picture_t& picture, int object_id, int inst_id, bool force_selected) {
  const auto& file = *picture.file;
  const auto& object = gx_object_id_ptr(file, object_id);
  const gx_type type = object.object_type;
  if (type == gx_type::tag || gx_is_deleted(object)) return;
  if (type == gx_type::grid_2d) {
    gx_draw_grid(picture, object_id);
    return;
  }
  if (gx_is_unvisible(object)) return;
  if (type < gx_type::arc3p_2d || type > gx_type::property_2d) {
    const auto name = gx_type_name(type);
    gx_debug(
        "DEbug  :  gx_display_prim  :  STEP1 :  file_index=%d   obj_id=%d(%d)type=%d(%.*s)"
        "(a:%d,p:%d) \n",
        picture.file_index, object_id, file.object_id_max, static_cast<int>(type),
        static_cast<int>(name.size()), name.data(), object.father, object.previous);
    gx_set_status(gx_code::object_type_invalid);
  }
  if (gx_viewport_rec(picture.vpid).vp_blocked) return;
  if (!gx_part_object_inside_vp_bounds(picture.vpid, file, object_id, inst_id)) return;

  const item_t item{picture, inst_id, force_selected || gx_is_selected(object),
                    gx_object_abs_origin(file, object_id, inst_id)};
  switch (type) {
    case gx_type::arc3p_2d:
      draw_arc(item, gx_arc_info_ptr(file, object_id));
      break;
    case gx_type::circle_2d:
      draw_circle(item, gx_circle_info_ptr(file, object_id));
      break;
    case gx_type::line_2d:
      draw_line(item, gx_line_info_ptr(file, object_id));
      break;
    case gx_type::polyline5_2d:
      draw_polyline(item, gx_polyline5_info_ptr(file, object_id), 0);
      break;
    case gx_type::polyline_2d: {
      const auto& polyline = gx_polyline_info_ptr(file, object_id);
      draw_polyline(item, polyline, item.style(polyline.line_style));
      break;
    }
    case gx_type::rectangle_2d:
      draw_rectangle(item, gx_rectangle_info_ptr(file, object_id));
      break;
    default:
      draw_property(item, gx_property_info_ptr(file, object_id));
      break;
  }
}

void gx_display_prim(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                     gx_draw_mode mode, bool force_selected) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, object_id, mode, "gx_display_prim");
  const gx_batch_t batch;
  gx_draw_prim(picture, object_id, inst_id, force_selected);
}

void gx_draw_pin(const gx_picture_t& picture, int pin_id, int inst_id, bool force_selected) {
  const auto& file = *picture.file;
  const auto& pin = gx_object_id_ptr(file, pin_id);
  if (pin.object_type != gx_type::pin) {
    const auto name = gx_type_name(pin.object_type);
    gx_debug(" gx_display_pin  :  file_index : %d    obj_id : %d\n  type : %15.*s\n",
             picture.file_index, pin_id, static_cast<int>(name.size()), name.data());
    gx_set_status(gx_code::object_type_invalid);
  }
  if (gx_is_hidden(pin)) return;
  if (gx_viewport_rec(picture.vpid).vp_blocked) return;
  if (!gx_part_object_inside_vp_bounds(picture.vpid, file, pin_id, inst_id)) return;

  const gx_pointreal_t origin = gx_object_abs_origin(file, pin_id, inst_id);
  const bool selected = force_selected || gx_is_selected(pin);
  const std::int32_t d = gx_vext.dim_pin;
  std::array<gx_point16_t, 5> diamond;
  const std::array<gx_pointreal_t, 4> corners{{{-d, 0}, {0, d}, {d, 0}, {0, -d}}};
  for (std::size_t i = 0; i < corners.size(); ++i)
    diamond[i] = gx_viewport_pt_real_to_pixel(
        picture.vpid, gx_viewport_dpt_obj2d_inst(file, inst_id, origin, corners[i]));
  diamond[4] = diamond[0];
  gx_draw_polyline(picture.vpid, gx_drawn_color(picture, pin_color, selected), 0, diamond);
}

void gx_display_pin(gx_vpid_t vpid, gx_file_index_t file_index, int pin_id, int inst_id,
                    gx_draw_mode mode, bool force_selected) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, pin_id, mode, "gx_display_pin");
  const gx_batch_t batch;
  gx_draw_pin(picture, pin_id, inst_id, force_selected);
}
