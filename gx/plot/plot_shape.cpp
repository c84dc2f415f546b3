// Shapes as pen moves: the plotter's own rounding and fonts.
#include "gx/plot/plot_shape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

#include "gx/db/place/geometry.h"
#include "gx/plot/plot_pen.h"
#include "gx/text/characters.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
constexpr double pen_step = 0.4;  // width of the pen, of one unit of line width

void plot_path(std::span<const gx_plot_point_t> points) {
  gx_plot_up(points[0]);
  for (const auto& point : points.subspan(1)) gx_plot_down(point);
}

// A line of `width` units. A line shorter than five times its width is thin.
void plot_line(gx_plot_point_t a, gx_plot_point_t b, int width) {
  const std::int64_t dx = std::abs(b.x - a.x), dy = std::abs(b.y - a.y);
  const std::int64_t major = std::max(dx, dy), minor = std::min(dx, dy);
  std::int64_t w = dx + dy < 5 * std::int64_t{width} ? 1 : width;
  if (w > 1) w += minor * w * 4 / (major * 10);
  if (w > 1) {
    gx_plot_width(static_cast<double>(w) * pen_step);
    const std::int64_t shift = w / 2;
    for (auto* end : {&a, &b}) (dy > dx ? end->x : end->y) += shift;
  }
  plot_path(std::array{a, b});
  if (w > 1) gx_plot_width(pen_step);
}

void plot_arc(const gx_shape_t& arc, gx_plot_point_t center) {
  const int a1 = arc.angle1 / 64, a2 = arc.angle2 / 64;  // whole degrees
  const double radius = static_cast<double>(gx_plot_length(arc.size));
  const double a = a1 * std::numbers::pi / 180;
  const gx_plot_point_t start{center.x + std::llround(std::floor(radius * std::cos(a) + 0.5)),
                              center.y + std::llround(std::floor(radius * std::sin(a) + 0.5))};
  std::int64_t sweep = std::int64_t{a2} - a1;
  // Whole turns beyond the first: two of them are a full circle, not nothing.
  if (std::abs(sweep) > 360) sweep = sweep % 360 != 0 ? sweep % 360 : sweep > 0 ? 360 : -360;
  plot_path(std::array{start, start});
  gx_plot_arc(center, static_cast<int>(sweep));
}

void plot_text(const gx_shape_t& text, gx_plot_point_t at) {
  const int rotation = text.file_rotation;
  if (rotation > 3) {
    gx_debug(" gx_plotfile_prim : prop_rotate  invalid ? : %d\n", rotation);
    gx_set_status(gx_code::coordonate_conversion_overflow);
  }
  gx_plot_text_direction(rotation);
  gx_plot_text_size(static_cast<double>(text.size) / gx_vext.lpplot_scale);
  gx_plot_up(at);
  gx_plot_label(gx_ascii(text.text));
}

}  // namespace

void gx_plotfile_dot(std::int32_t page_height, std::int32_t x, std::int32_t y,
                     std::int32_t half_size) {
  if (half_size <= 0) return;
  const gx_boundsreal_t box = gx_move({-half_size, -half_size, half_size, half_size}, {x, y});
  gx_plot_up(gx_plot_at({box.xmin, box.ymin}, page_height));
  gx_plot_fill_to(gx_plot_at({box.xmax, box.ymax}, page_height));
}

void gx_plot_shape(const gx_shape_t& shape, std::int32_t page_height) {
  const auto at = [&](std::size_t i) { return gx_plot_at(shape.points[i], page_height); };
  switch (shape.kind) {
    case gx_shape_kind::line:
      plot_line(at(0), at(1), shape.width);
      break;
    case gx_shape_kind::polyline:
      for (std::size_t i = 0; i < shape.points.size(); ++i)
        i == 0 ? gx_plot_up(at(i)) : gx_plot_down(at(i));
      break;
    case gx_shape_kind::arc:
      plot_arc(shape, at(3));
      break;
    case gx_shape_kind::circle:
      plot_path(std::array{at(0), at(0)});
      gx_plot_circle(gx_plot_length(shape.size));
      break;
    case gx_shape_kind::box: {
      const auto p = at(0), q = at(1);
      plot_path(std::array<gx_plot_point_t, 5>{p, {q.x, p.y}, q, {p.x, q.y}, p});
      break;
    }
    case gx_shape_kind::text:
      plot_text(shape, at(0));
      break;
    case gx_shape_kind::dot:
      gx_plotfile_dot(page_height, shape.points[0].x, shape.points[0].y, shape.size);
      break;
    case gx_shape_kind::page:
    case gx_shape_kind::loose_pin:
    case gx_shape_kind::selected_vertex:
      break;
  }
}
