// Primitives, pins and nets as shapes.
#include "gx/picture/object_shapes.h"

#include <algorithm>
#include <array>
#include <string>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/place/placement.h"
#include "gx/db/place/segment_ends.h"
#include "gx/db/queries.h"
#include "gx/text/kept_text.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
constexpr int pin_color = 1, page_color = 6;

bool is_seen(const gx_sink_t& sink, int id, int inst) { return !sink.sees || sink.sees(id, inst); }

// An object on its way to the sink.
struct item_t {
  const gx_file_gene_recf_t& file;
  const gx_sink_t& sink;
  gx_shape_t shape;
  gx_pointreal_t origin;  // absolute

  item_t(const gx_file_gene_recf_t& of, const gx_sink_t& to, int id, int inst, bool selected)
      : file(of), sink(to), origin(gx_object_abs_origin(of, id, inst)) {
    shape.object = id;
    shape.inst = inst;
    shape.selected = selected;
  }
  // A point given relative to the origin.
  gx_pointreal_t at(gx_pointreal_t relative) const {
    return gx_viewport_dpt_obj2d_inst(file, shape.inst, origin, relative);
  }
  void draw(gx_shape_kind kind, std::span<const gx_pointreal_t> points) {
    shape.kind = kind;
    shape.points = points;
    sink.draw(shape);
  }
};

// An angle of a file: less than one turn below 0 and two turns above are left as they are.
std::int32_t reduced(std::int32_t angle) {
  return angle < 0 || angle >= 2 * gx_full_turn ? angle % gx_full_turn : angle;
}

void shape_arc(item_t& item, const gx_object_arc_rec_t& arc) {
  auto& shape = item.shape;
  shape.color = arc.border_color;
  shape.size = arc.rad;
  shape.angle1 = arc.angle1;
  shape.angle2 = arc.angle2;
  gx_arc_abs_difang(item.file, shape.inst, shape.angle1, shape.angle2);
  std::int32_t start = reduced(arc.angle1), end = reduced(arc.angle2);
  gx_arc_abs_difang(item.file, shape.inst, start, end);
  shape.start = reduced(start) % gx_full_turn;
  shape.extent = std::clamp(end - start, -gx_full_turn, gx_full_turn);
  item.draw(gx_shape_kind::arc,
            std::array{item.origin, item.at(arc.pt2), item.at(arc.pt3), item.at(arc.center)});
}

// The first point is the origin itself; the others are relative to it.
template <typename Polyline>
void shape_polyline(item_t& item, const Polyline& polyline) {
  std::array<gx_pointreal_t, Polyline::max_points> points;
  const auto count =
      static_cast<std::size_t>(std::clamp<int>(polyline.n_points, 0, Polyline::max_points));
  points[0] = item.origin;
  for (std::size_t i = 1; i < count; ++i) points[i] = item.at(polyline.points[i]);
  item.shape.color = polyline.line_color;
  item.draw(gx_shape_kind::polyline, std::span(points.data(), count));
}

void shape_text(item_t& item, const gx_object_property_rec_t& property) {
  auto& shape = item.shape;
  const std::string_view kept = gx_view(property.nvalue);
  const std::string shown = gx_has_signs(kept) ? gx_shown_text(kept) : std::string();
  shape.text = shown.empty() ? kept : std::string_view(shown);
  shape.size = property.height;
  shape.color = property.line_color;
  shape.file_rotation = property.rotate;
  shape.rotation = property.rotate % 4;
  if (shape.inst >= 2) {
    const auto& instance = gx_instance_info_ptr(item.file, shape.inst);
    shape.file_rotation = (property.rotate + instance.rotate) % 4;
    shape.rotation = shape.file_rotation;
    if (instance.fliph != 0 && shape.rotation % 2 == 1) shape.rotation = 4 - shape.rotation;
  }
  item.draw(gx_shape_kind::text, std::array{item.origin});
}

void shape_page(const gx_file_gene_recf_t& file, int id, const gx_sink_t& sink) {
  item_t item(file, sink, id, 0, false);
  item.shape.color = page_color;
  item.draw(gx_shape_kind::page,
            std::array{item.origin, item.at(gx_grid_info_ptr(file, id).opposite_pt)});
}

// --- nets

// The live segments of a net.
template <typename Visit>
void visit_segments(const gx_file_gene_recf_t& file, int net, Visit visit) {
  for (int id = gx_inq_first_net_segment_id(file, net); id > 0;
       id = gx_inq_next_net_segment_id(file, net, id))
    if (!gx_is_deleted(gx_object_id_ptr(file, id))) visit(id);
}

// The texts of a net; true when one of them names it.
bool shape_net_texts(const gx_file_gene_recf_t& file, int net, const gx_sink_t& sink) {
  bool named = false;
  for (int id = gx_inq_first_net_property_id(file, net); id > 0;
       id = gx_inq_next_net_property_id(file, net, id)) {
    if (gx_is_deleted(gx_object_id_ptr(file, id))) continue;
    gx_primitive_shape(file, id, 0, false, sink);
    named = named || gx_iden(gx_view(gx_property_info_ptr(file, id).name), "NET");
  }
  return named;
}

// `is_stub`: the net is one segment without a name.
void shape_segment(const gx_net_segment_t& drawn, bool is_stub, const gx_sink_t& sink) {
  const auto& [file, operation, net, id] = drawn;
  const auto& segment = gx_segment_info_ptr(file, id);
  const gx_segment_end_t ends[2] = {drawn.end(1), drawn.end(2)};
  drawn.check_width();
  gx_shape_t shape;
  shape.object = id;
  shape.net = net;
  shape.color = segment.line_color;
  shape.style = segment.line_style;
  shape.width = segment.line_width;
  shape.selected = gx_is_selected(segment.gene);
  // The mark is for one segment between a pin and a free vertex.
  const bool is_loose = is_stub && ends[0].is_pin != ends[1].is_pin;
  const auto draw_end = [&](gx_shape_kind kind, const gx_segment_end_t& end) {
    gx_shape_t mark = shape;
    mark.kind = kind;
    mark.size = drawn.file.dot_width;
    mark.selected = shape.selected || end.is_selected;
    mark.points = std::span(&end.point, 1);
    sink.draw(mark);
  };
  for (const auto& end : ends) {
    if (is_loose && end.is_pin) draw_end(gx_shape_kind::loose_pin, end);
    if (end.is_selected && !end.is_pin) draw_end(gx_shape_kind::selected_vertex, end);
    if (end.is_dotted) draw_end(gx_shape_kind::dot, end);
  }
  const std::array points{ends[0].point, ends[1].point};
  shape.kind = gx_shape_kind::line;
  shape.points = points;
  sink.draw(shape);
}
}  // namespace

void gx_primitive_shape(const gx_file_gene_recf_t& file, int id, int inst, bool selected,
                        const gx_sink_t& sink) {
  const auto& object = gx_object_id_ptr(file, id);
  const gx_type type = object.object_type;
  if (type == gx_type::tag || gx_is_deleted(object)) return;
  if (type == gx_type::grid_2d) return shape_page(file, id, sink);
  if (gx_is_unvisible(object)) return;
  if (type < gx_type::arc3p_2d || type > gx_type::property_2d) {
    const auto name = gx_type_name(type);
    gx_debug(
        "DEbug  :  %s_prim  :  STEP1 :  file_index=%d   obj_id=%d(%d)type=%d(%.*s)(a:%d,p:%d) \n",
        sink.name, file.file_index, id, file.object_id_max, static_cast<int>(type),
        static_cast<int>(name.size()), name.data(), object.father, object.previous);
    gx_set_status(gx_code::object_type_invalid);
  }
  if (!is_seen(sink, id, inst)) return;

  item_t item(file, sink, id, inst, selected || gx_is_selected(object));
  auto& shape = item.shape;
  switch (type) {
    case gx_type::arc3p_2d:
      shape_arc(item, gx_arc_info_ptr(file, id));
      break;
    case gx_type::circle_2d: {
      const auto& circle = gx_circle_info_ptr(file, id);
      shape.color = circle.border_color;
      shape.style = circle.border_style;
      shape.size = circle.rad;
      item.draw(gx_shape_kind::circle, std::array{item.origin});
      break;
    }
    case gx_type::line_2d: {
      const auto& line = gx_line_info_ptr(file, id);
      if (line.line_width < 1) gx_set_status(gx_code::invalid_line_2d);
      shape.color = line.line_color;
      shape.style = line.line_style;
      shape.width = line.line_width;
      item.draw(gx_shape_kind::line, std::array{item.origin, item.at(line.pt2)});
      break;
    }
    case gx_type::polyline5_2d:  // always solid
      shape_polyline(item, gx_polyline5_info_ptr(file, id));
      break;
    case gx_type::polyline_2d: {
      const auto& polyline = gx_polyline_info_ptr(file, id);
      shape.style = polyline.line_style;
      shape_polyline(item, polyline);
      break;
    }
    case gx_type::rectangle_2d: {
      const auto& rectangle = gx_rectangle_info_ptr(file, id);
      shape.color = rectangle.line_color;
      shape.style = rectangle.line_style;
      shape.filled = rectangle.filled != 0;
      item.draw(gx_shape_kind::box, std::array{item.origin, item.at(rectangle.pt2)});
      break;
    }
    default:
      shape_text(item, gx_property_info_ptr(file, id));
  }
}

void gx_pin_shape(const gx_file_gene_recf_t& file, int id, int inst, bool selected,
                  const gx_sink_t& sink) {
  const auto& pin = gx_object_id_ptr(file, id);
  if (pin.object_type != gx_type::pin) {
    const auto name = gx_type_name(pin.object_type);
    gx_debug(" %s_pin  :  file_index : %d    obj_id : %d\n  type : %15.*s\n", sink.name,
             file.file_index, id, static_cast<int>(name.size()), name.data());
    gx_set_status(gx_code::object_type_invalid);
  }
  if (gx_is_hidden(pin) || !is_seen(sink, id, inst)) return;
  item_t item(file, sink, id, inst, selected || gx_is_selected(pin));
  item.shape.color = pin_color;
  const std::int32_t d = gx_vext.dim_pin;
  const auto left = item.at({-d, 0});
  item.draw(gx_shape_kind::polyline,
            std::array{left, item.at({0, d}), item.at({d, 0}), item.at({0, -d}), left});
}

void gx_net_shapes(const gx_file_gene_recf_t& file, int net, const gx_sink_t& sink) {
  if (!gx_object_id_ok(file, net)) {
    gx_debug(" %s_net : net_id invalid !! :%d\n", sink.name, net);
    gx_set_status(gx_code::object_id_invalid);
  }
  const auto& object = gx_object_id_ptr(file, net);
  if (object.object_type != gx_type::net) {
    const auto name = gx_type_name(object.object_type);
    gx_debug(" %s_net : object_type invalid !! : %15.*s\n", sink.name,
             static_cast<int>(name.size()), name.data());
    gx_set_status(gx_code::object_type_invalid);
  }
  if (gx_is_hidden(object) || !is_seen(sink, net, 0)) return;
  if (sink.opens) sink.opens(net);
  int segments = 0;
  if (!shape_net_texts(file, net, sink)) visit_segments(file, net, [&](int) { ++segments; });
  const std::string operation = std::string(sink.name) + "_net";
  visit_segments(file, net, [&](int id) {
    shape_segment({file, operation.c_str(), net, id}, segments == 1, sink);
  });
  if (sink.closes) sink.closes(net);
}
