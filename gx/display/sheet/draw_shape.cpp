// Shapes on the screen: small circles, colours and styles of what is selected or marked, clipping.
#include "gx/display/sheet/draw_shape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/grid.h"
#include "gx/display/sheet/highlight.h"
#include "gx/display/sheet/markers.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/clipping.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
constexpr int largest_diamond = 5;        // radius in pixels; larger circles are round
constexpr int largest_server_arc = 6000;  // radius; the box of a larger one leaves 16 bits
constexpr int selected_style = 3;

// A shape on its way to the screen.
struct item_t {
  const gx_picture_t& picture;
  const gx_shape_t& shape;
  const gx_highlight_t* mark = nullptr;  // it is of a highlighted net or instance
  std::optional<int> own_color{};        // none: that of its role

  gx_vpid_t vpid() const { return picture.vpid; }
  int color() const {
    const int chosen = gx_vext.color_obj_selected;
    if (!picture.erases() && shape.selected) return gx_color_of(gx_role::selection, chosen);
    if (!picture.erases() && mark != nullptr) return gx_highlight_color(mark->color);
    const int color = own_color ? *own_color : gx_color_of(role(), gx_file_color(shape.color));
    return gx_drawn_color(picture, color, false);
  }
  gx_role role() const {
    if (shape.kind == gx_shape_kind::text) return gx_role::text;
    if (shape.net != 0) return gx_role::wire;
    const auto& file = *picture.file;
    if (gx_object_id_ptr(file, shape.object).object_type == gx_type::pin) return gx_role::pin;
    const bool is_sheet = file.grid_obj_id != 0;
    return is_sheet && shape.inst == 0 ? gx_role::frame : gx_role::symbol;
  }
  // Checked also where it is not used.
  int style() const {
    if (shape.style < 0 || shape.style >= gx_nb_of_styles) {
      if (shape.net != 0)
        gx_debug(" gx_display_net : line style invalid !! :    net_id : %d   segment_id :%d\n",
                 shape.net, shape.object);
      gx_set_status(gx_code::invalid_style);
    }
    return shape.selected ? selected_style : mark != nullptr ? 0 : shape.style;
  }
  int width() const {
    constexpr int marked_width = 3;
    return mark != nullptr && gx_theme().has_roles ? std::max(shape.width, marked_width)
                                                   : shape.width;
  }
  gx_point16_t pixel(std::size_t i = 0) const {
    return gx_viewport_pt_real_to_pixel(vpid(), shape.points[i]);
  }
  int size() const { return gx_viewport_obj2d_to_pixel(vpid(), shape.size); }
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
  constexpr double radians = std::numbers::pi / (gx_full_turn / 2);
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

void draw_arc(const item_t& item) {
  const gx_point16_t p1 = item.pixel(0), p2 = item.pixel(1), p3 = item.pixel(2);
  if (!gx_arc_clipping(item.vpid(), p1, p2, p3)) return;
  const gx_point16_t centre = item.pixel(3);
  const int r = item.size(), color = item.color();
  if (r > largest_diamond)
    draw_round(item, color, 0, centre, r, item.shape.start, item.shape.extent);
  else if (is_straight(p1, p2) && is_straight(p2, p3))
    draw_diamond(item, color, 0, centre, r);
  else
    gx_draw_polyline(item.vpid(), color, 0, std::array{p1, p2, p3});
}

void draw_circle(const item_t& item) {
  const gx_point16_t centre = item.pixel();
  const int r = item.size();
  if (!gx_circle_clipping(item.vpid(), centre, r)) return;
  if (r > largest_diamond)
    draw_round(item, item.color(), item.style(), centre, r, 0, gx_full_turn);
  else
    draw_diamond(item, item.color(), item.style(), centre, r);
}

void draw_polyline(const item_t& item) {
  const int style = item.style(), color = item.color();
  if (item.shape.points.empty()) return;
  gx_point16_t from = item.pixel(0);
  for (std::size_t i = 1; i < item.shape.points.size(); ++i) {
    const gx_point16_t to = item.pixel(i);
    gx_draw_line(item.vpid(), color, style, from, to);
    from = to;
  }
}

void draw_box(const item_t& item) {
  const gx_point16_t p = item.pixel(0), q = item.pixel(1);
  if (!item.shape.filled) {
    const std::array<gx_point16_t, 5> outline{p, {q.x, p.y}, q, {p.x, q.y}, p};
    gx_draw_polyline(item.vpid(), item.color(), item.style(), outline);
  } else if (gx_filled_rectangle_clipping(item.vpid(), p, q)) {
    gx_pen_box(item.color(), std::min(p.x, q.x), std::min(p.y, q.y), std::abs(q.x - p.x),
               std::abs(q.y - p.y));
  }
}
}  // namespace

void gx_draw_shape(const gx_picture_t& picture, const gx_shape_t& shape, const gx_highlight_t* mark,
                   std::optional<int> color) {
  item_t item{picture, shape, mark, color};
  if (shape.net != 0 && !picture.erases() && mark == nullptr) {
    item.mark = gx_highlight_of(picture.file_index, shape.net);
    if (item.mark == nullptr) item.mark = gx_highlight_of(picture.file_index, shape.object);
  } else if (shape.inst != 0 && !picture.erases() && mark == nullptr) {
    item.mark = gx_highlight_of(picture.file_index, shape.inst);
  }
  switch (shape.kind) {
    case gx_shape_kind::line:
      gx_draw_thick_line(picture.vpid, item.color(), item.style(), item.pixel(0), item.pixel(1),
                         item.width());
      break;
    case gx_shape_kind::polyline:
      draw_polyline(item);
      break;
    case gx_shape_kind::arc:
      draw_arc(item);
      break;
    case gx_shape_kind::circle:
      draw_circle(item);
      break;
    case gx_shape_kind::box:
      draw_box(item);
      break;
    case gx_shape_kind::text:
      gx_text(picture.vpid, shape.text, item.pixel().x, item.pixel().y, item.size(), shape.rotation,
              item.color());
      break;
    case gx_shape_kind::dot:
      gx_display_dot(picture.vpid, item.pixel(), item.size(), item.color());
      break;
    case gx_shape_kind::page:
      gx_draw_grid(picture, shape);
      break;
    case gx_shape_kind::loose_pin:
      if (!picture.erases()) gx_display_pin_nocon(picture.vpid, shape.points[0]);
      break;
    case gx_shape_kind::selected_vertex:
      if (!picture.erases()) gx_display_selvertex(picture.vpid, shape.points[0]);
      break;
  }
}
