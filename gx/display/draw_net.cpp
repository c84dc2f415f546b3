// Nets: segments, junction dots, the marks of their ends, and probes.
#include <algorithm>
#include <array>

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/display/draw_steps.h"
#include "gx/display/screen_state.h"
#include "gx/display/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
constexpr int white = 7;
constexpr std::int32_t probe_step = 5000;     // of its line and box, design units
constexpr std::int32_t probe_advance = 6250;  // a character of its name
constexpr int probe_margin = 3;               // pixels left free at the viewport's edge

bool is_deleted(const gx_object_gene_rec_t& object) {
  return (object.status & gx_flag_deleted) != 0;
}

bool is_selected(const gx_object_gene_rec_t& object) {
  return (object.status & gx_flag_selected) != 0;
}

// An end of a segment: a vertex, or the pin of an instance.
struct end_t {
  gx_pointreal_t point;
  bool is_pin = false;
  bool is_dotted = false;
  bool is_selected = false;
};

// One net on its way to the screen.
struct net_t {
  const gx_picture_t& picture;
  int id = 0;
  bool is_stub = false;  // one segment, no name
};

[[noreturn]] void refuse_end(const net_t& net, int segment_id, int which, int vertex_id,
                             std::string_view what, const char* fault) {
  gx_debug(" gx_display_net : vertex%d_id %s !! : %d  %15.*s   net_id : %d   segment_id :%d\n",
           which, fault, vertex_id, static_cast<int>(what.size()), what.data(), net.id, segment_id);
  gx_set_status(gx_code::object_id_invalid);
}

end_t end_of(const net_t& net, int segment_id, int which, int vertex_id) {
  const auto& file = *net.picture.file;
  if (!gx_object_id_ok(file, vertex_id))
    refuse_end(net, segment_id, which, vertex_id, gx_type_name(gx_type::nil), "invalid");
  const auto& object = gx_object_id_ptr(file, vertex_id);
  const auto type = gx_type_name(object.object_type);
  if (is_deleted(object)) refuse_end(net, segment_id, which, vertex_id, type, "deleted");
  switch (object.object_type) {
    case gx_type::vertex_2d:
      return {gx_object_abs_origin(file, vertex_id, 0), false,
              gx_vertex_info_ptr(file, vertex_id).dotted != 0, is_selected(object)};
    case gx_type::pinpropfam:
      return {gx_pin_abs_origin(file, vertex_id), true,
              gx_pinpropfam_info_ptr(file, vertex_id).dotted != 0, is_selected(object)};
    default:
      refuse_end(net, segment_id, which, vertex_id, type, "invalid");
  }
}

void draw_end(const net_t& net, const end_t& end, int segment_color) {
  const auto& picture = net.picture;
  const bool draws = !picture.erases();
  if (net.is_stub && end.is_pin && draws) gx_display_pin_nocon(picture.vpid, end.point);
  if (end.is_selected && !end.is_pin && draws) gx_display_selvertex(picture.vpid, end.point);
  if (end.is_dotted)
    gx_display_dot(picture.vpid, gx_viewport_pt_real_to_pixel(picture.vpid, end.point),
                   gx_viewport_obj2d_to_pixel(picture.vpid, picture.file->dot_width),
                   end.is_selected ? gx_drawn_color(picture, 0, true) : segment_color);
}

void draw_segment(const net_t& net, int segment_id) {
  const auto& picture = net.picture;
  const auto& segment = gx_segment_info_ptr(*picture.file, segment_id);
  const end_t end1 = end_of(net, segment_id, 1, segment.vertex1);
  const end_t end2 = end_of(net, segment_id, 2, segment.vertex2);
  if (segment.line_width < 1) {
    gx_debug(" gx_display_net : line_width  invalid !! : %d     net_id : %d   segment_id :%d\n",
             segment.line_width, net.id, segment_id);
    gx_set_status(gx_code::invalid_line_2d);
  }
  if (segment.line_style < 0 || segment.line_style >= gx_nb_of_styles) {
    gx_debug(" gx_display_net : line style invalid !! :    net_id : %d   segment_id :%d\n", net.id,
             segment_id);
    gx_set_status(gx_code::invalid_style);
  }
  const bool selected = is_selected(segment.gene);
  const int color = gx_drawn_color(picture, segment.line_color, selected);
  gx_draw_thick_line(picture.vpid, color, selected ? gx_selected_style : segment.line_style,
                     gx_viewport_pt_real_to_pixel(picture.vpid, end1.point),
                     gx_viewport_pt_real_to_pixel(picture.vpid, end2.point), segment.line_width);
  draw_end(net, end1, color);
  draw_end(net, end2, color);
}

// Draws the texts of a net; true when one of them names it.
bool draw_properties(const gx_picture_t& picture, int net_id) {
  const auto& file = *picture.file;
  bool named = false;
  for (int id = gx_inq_first_net_property_id(file, net_id); id > 0;
       id = gx_inq_next_net_property_id(file, net_id, id)) {
    if (is_deleted(gx_object_id_ptr(file, id))) continue;
    gx_draw_prim(picture, id, 0, false);
    named = named || gx_iden(gx_view(gx_property_info_ptr(file, id).name), "NET");
  }
  return named;
}

int nb_of_segments(const gx_file_gene_recf_t& file, int net_id) {
  int count = 0;
  for (int id = gx_inq_first_net_segment_id(file, net_id); id > 0;
       id = gx_inq_next_net_segment_id(file, net_id, id))
    if (!is_deleted(gx_object_id_ptr(file, id))) ++count;
  return count;
}

std::int32_t away(std::int32_t from, std::int64_t by) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(from + by, INT32_MIN, INT32_MAX));
}
}  // namespace

void gx_draw_net(const gx_picture_t& picture, int net_id) {
  const auto& file = *picture.file;
  if (!gx_object_id_ok(file, net_id)) {
    gx_debug(" gx_display_net : net_id invalid !! :%d\n", net_id);
    gx_set_status(gx_code::object_id_invalid);
  }
  const auto& record = gx_net_info_ptr(file, net_id);
  if (!gx_vext.display_on || gx_viewport_rec(picture.vpid).vp_blocked) return;
  if ((record.gene.status & (gx_flag_deleted | gx_flag_unvisible)) != 0) return;
  if (!gx_part_object_inside_vp_bounds(picture.vpid, file, net_id, 0)) return;
  if (record.ptrto_probe != nullptr)
    gx_display_probe(picture.vpid, picture.file_index, *record.ptrto_probe);
  net_t net{picture, net_id, false};
  if (!draw_properties(picture, net_id)) net.is_stub = nb_of_segments(file, net_id) == 1;
  for (int id = gx_inq_first_net_segment_id(file, net_id); id > 0;
       id = gx_inq_next_net_segment_id(file, net_id, id))
    if (!is_deleted(gx_object_id_ptr(file, id))) draw_segment(net, id);
}

void gx_display_net(gx_vpid_t vpid, gx_file_index_t file_index, int net_id, gx_draw_mode mode) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, net_id, mode, "gx_display_net");
  const gx_batch_t batch;
  gx_draw_net(picture, net_id);
}

void gx_display_probe(gx_vpid_t vpid, gx_file_index_t file_index,
                      const gx_display_probe_rec_t& probe) {
  if (!gx_drawing_possible()) return;
  const auto picture =
      gx_picture_of(vpid, file_index, probe.vertex, gx_draw_mode::draw, "gx_display_probe");
  if (vpid != gx_vext.viewport_edit && vpid != gx_vext.viewport_context) return;
  if (probe.name.len == 0 || !gx_vext.display_on) return;
  if (probe.name.len < 0 || probe.name.len > gx_max_string_length) {
    gx_debug(" gx_display_probe : name len : %d\n %.5s\n", probe.name.len, probe.name.char_);
    gx_set_status(gx_code::invalid_string);
  }
  const auto& file = *picture.file;
  const auto& object = gx_object_id_ptr(file, probe.vertex);
  if (object.object_type != gx_type::vertex_2d && object.object_type != gx_type::pinpropfam) {
    const auto name = gx_type_name(object.object_type);
    gx_debug(" gx_display_probe : object_type : %15.*s\n", static_cast<int>(name.size()),
             name.data());
    gx_set_status(gx_code::object_type_invalid);
  }
  if (is_deleted(object)) return;
  const gx_pointreal_t p = object.object_type == gx_type::vertex_2d
                               ? gx_object_abs_origin(file, probe.vertex, 0)
                               : gx_pin_abs_origin(file, probe.vertex);
  const auto pixel = [&](std::int64_t dx, std::int64_t dy) {
    return gx_viewport_pt_real_to_pixel(vpid, {away(p.x, dx), away(p.y, dy)});
  };
  const gx_bounds16_t& v = gx_viewport_rec(vpid).pixel_bounds;
  const auto inside = [&](gx_point16_t q) {
    return q.x >= v.xmin + probe_margin && q.x <= v.xmax - probe_margin &&
           q.y >= v.ymin + probe_margin && q.y <= v.ymax - probe_margin;
  };
  const std::int64_t width = std::int64_t{probe_advance} * probe.name.len;
  const gx_point16_t start = pixel(0, 0), near = pixel(probe_step, probe_step),
                     far = pixel(2 * probe_step + width, 3 * probe_step),
                     text = pixel(probe_step * 3 / 2, probe_step * 3 / 2);
  if (!inside(start) || !inside(near)) return;
  const gx_batch_t batch;
  gx_draw_line(vpid, white, 0, start, near);
  if (!inside(far)) {
    gx_debug_line("  gx_display_probe : point_pt2_outside  : ");
    return;
  }
  const std::array<gx_point16_t, 5> box{near, {far.x, near.y}, far, {near.x, far.y}, near};
  gx_draw_polyline(vpid, white, 0, box);
  gx_text(vpid, gx_view(probe.name), text.x, text.y, gx_viewport_obj2d_to_pixel(vpid, probe_step),
          0, white);
}
