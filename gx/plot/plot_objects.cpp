// The objects of a plot: primitives, pins, nets and junction dots as pen moves.
#include "gx/plot/plot_objects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/db/placement.h"
#include "gx/db/queries.h"
#include "gx/db/segment_ends.h"
#include "gx/plot/plot_pen.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

namespace {

constexpr double pen_step = 0.4;  // width of the pen, of one unit of line width

// An object on its way to the paper.
struct item_t {
  const gx_file_gene_recf_t& file;
  int inst;
  std::int32_t page_height;
  gx_pointreal_t origin;  // absolute

  gx_plot_point_t at(gx_pointreal_t p) const { return gx_plot_at(p, page_height); }
  gx_plot_point_t at_origin() const { return at(origin); }
  // A point given relative to the origin.
  gx_plot_point_t at_relative(gx_pointreal_t d) const {
    return at(gx_viewport_dpt_obj2d_inst(file, inst, origin, d));
  }
};

item_t item_of(const gx_file_gene_recf_t& file, int id, int inst) {
  return {file, inst, gx_inq_page_dim(file).y, gx_object_abs_origin(file, id, inst)};
}

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

void plot_arc(const item_t& item, const gx_object_arc_rec_t& arc) {
  std::int32_t angle1 = arc.angle1, angle2 = arc.angle2;
  gx_arc_abs_difang(item.file, item.inst, angle1, angle2);
  const int a1 = angle1 / 64, a2 = angle2 / 64;  // whole degrees
  const gx_plot_point_t center = item.at_relative(arc.center);
  const double radius = static_cast<double>(gx_plot_length(arc.rad));
  const double a = a1 * std::numbers::pi / 180;
  const gx_plot_point_t start{center.x + std::llround(std::floor(radius * std::cos(a) + 0.5)),
                              center.y + std::llround(std::floor(radius * std::sin(a) + 0.5))};
  std::int64_t sweep = std::int64_t{a2} - a1;
  // Whole turns beyond the first: two of them are a full circle, not nothing.
  if (std::abs(sweep) > 360) sweep = sweep % 360 != 0 ? sweep % 360 : sweep > 0 ? 360 : -360;
  plot_path(std::array{start, start});
  gx_plot_arc(center, static_cast<int>(sweep));
}

template <typename Polyline>
void plot_polyline(const item_t& item, const Polyline& polyline) {
  const int count = std::min<int>(polyline.n_points, Polyline::max_points);
  if (count < 1) return;
  gx_plot_up(item.at_origin());
  for (std::size_t i = 1; i < static_cast<std::size_t>(count); ++i)
    gx_plot_down(item.at_relative(polyline.points[i]));
}

void plot_rectangle(const item_t& item, const gx_object_rectangle_rec_t& rectangle) {
  const auto p = item.at_origin(), q = item.at_relative(rectangle.pt2);
  plot_path(std::array<gx_plot_point_t, 5>{p, {q.x, p.y}, q, {p.x, q.y}, p});
}

void plot_property(const item_t& item, const gx_object_property_rec_t& property) {
  int rotation = property.rotate;
  if (item.inst >= 2) rotation = (rotation + gx_instance_info_ptr(item.file, item.inst).rotate) % 4;
  if (rotation > 3) {
    gx_debug(" gx_plotfile_prim : prop_rotate  invalid ? : %d\n", rotation);
    gx_set_status(gx_code::coordonate_conversion_overflow);
  }
  gx_plot_text_direction(rotation);
  gx_plot_text_size(static_cast<double>(property.height) / gx_vext.lpplot_scale);
  gx_plot_up(item.at_origin());
  gx_plot_label(gx_view(property.nvalue));
}

void plot_segment(const gx_file_gene_recf_t& file, int net, int id, std::int32_t page_height) {
  const gx_net_segment_t plotted{file, "gx_plotfile_net", net, id};
  plotted.check_width();
  const gx_segment_end_t ends[2] = {plotted.end(1), plotted.end(2)};
  for (const auto& end : ends)
    if (end.is_dotted) gx_plotfile_dot(page_height, end.point.x, end.point.y, file.dot_width);
  plot_line(gx_plot_at(ends[0].point, page_height), gx_plot_at(ends[1].point, page_height),
            gx_segment_info_ptr(file, id).line_width);
}

}  // namespace

void gx_plotfile_dot(std::int32_t page_height, std::int32_t x, std::int32_t y,
                     std::int32_t half_size) {
  if (half_size <= 0) return;
  const gx_boundsreal_t box = gx_move({-half_size, -half_size, half_size, half_size}, {x, y});
  gx_plot_up(gx_plot_at({box.xmin, box.ymin}, page_height));
  gx_plot_fill_to(gx_plot_at({box.xmax, box.ymax}, page_height));
}

void gx_plotfile_prim(gx_file_index_t file_index, int object_id, int inst_id) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const auto& object = gx_object_id_ptr(file, object_id);
  if (object.object_type == gx_type::tag || gx_is_hidden(object)) return;
  if (object.object_type == gx_type::grid_2d) return;
  const item_t item = item_of(file, object_id, inst_id);
  switch (object.object_type) {
    case gx_type::arc3p_2d:
      plot_arc(item, gx_arc_info_ptr(file, object_id));
      break;
    case gx_type::circle_2d:
      plot_path(std::array{item.at_origin(), item.at_origin()});
      gx_plot_circle(gx_plot_length(gx_circle_info_ptr(file, object_id).rad));
      break;
    case gx_type::line_2d: {
      const auto& line = gx_line_info_ptr(file, object_id);
      if (line.line_width < 1) gx_set_status(gx_code::invalid_line_2d);
      plot_line(item.at_origin(), item.at_relative(line.pt2), line.line_width);
      break;
    }
    case gx_type::polyline5_2d:
      plot_polyline(item, gx_polyline5_info_ptr(file, object_id));
      break;
    case gx_type::polyline_2d:
      plot_polyline(item, gx_polyline_info_ptr(file, object_id));
      break;
    case gx_type::rectangle_2d:
      plot_rectangle(item, gx_rectangle_info_ptr(file, object_id));
      break;
    case gx_type::property_2d:
      plot_property(item, gx_property_info_ptr(file, object_id));
      break;
    default:
      gx_set_status(gx_code::object_type_invalid);
  }
}

void gx_plotfile_pin(gx_file_index_t file_index, int pin_id, int inst_id) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const auto& pin = gx_object_id_ptr(file, pin_id);
  if (pin.object_type != gx_type::pin) {
    const auto name = gx_type_name(pin.object_type);
    gx_debug(" gx_plotfile_pin  :  file_index : %d    obj_id : %d\n  type : %15.*s\n", file_index,
             pin_id, static_cast<int>(name.size()), name.data());
    gx_set_status(gx_code::object_type_invalid);
  }
  if (gx_is_hidden(pin)) return;
  const item_t item = item_of(file, pin_id, inst_id);
  const std::int32_t d = gx_vext.dim_pin;
  const auto left = item.at_relative({-d, 0});
  plot_path(std::array{left, item.at_relative({0, d}), item.at_relative({d, 0}),
                       item.at_relative({0, -d}), left});
}

void gx_plotfile_net(gx_file_index_t file_index, int net_id) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  if (!gx_object_id_ok(file, net_id)) {
    gx_debug(" gx_plotfile_net : net_id invalid !! :%d\n", net_id);
    gx_set_status(gx_code::object_id_invalid);
  }
  const auto& net = gx_object_id_ptr(file, net_id);
  if (net.object_type != gx_type::net) {
    const auto name = gx_type_name(net.object_type);
    gx_debug(" gx_plotfile_net : object_type invalid !! : %15.*s\n", static_cast<int>(name.size()),
             name.data());
    gx_set_status(gx_code::object_type_invalid);
  }
  if (gx_is_hidden(net)) return;
  for (int id = gx_inq_first_net_property_id(file, net_id); id != 0;
       id = gx_inq_next_net_property_id(file, net_id, id))
    if (!gx_inq_object_deleted(file, id)) gx_plotfile_prim(file_index, id, 0);
  const std::int32_t page_height = gx_inq_page_dim(file).y;
  for (int id = gx_inq_first_net_segment_id(file, net_id); id != 0;
       id = gx_inq_next_net_segment_id(file, net_id, id))
    if (!gx_inq_object_deleted(file, id)) plot_segment(file, net_id, id, page_height);
}
