// Nets: segments, junction dots, and the marks of their ends.
#include "gx/display/draw_net.h"

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/db/segment_ends.h"
#include "gx/display/draw_prim.h"
#include "gx/display/draw_steps.h"
#include "gx/display/highlight.h"
#include "gx/display/markers.h"
#include "gx/display/probe.h"
#include "gx/display/screen_state.h"
#include "gx/display/shapes.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
// One net on its way to the screen.
struct net_t {
  const gx_picture_t& picture;
  int id = 0;
  bool is_stub = false;                       // one segment, no name
  const gx_highlight_t* highlight = nullptr;  // of the whole net
};

void draw_end(const gx_picture_t& picture, const gx_segment_end_t& end, bool is_loose,
              int segment_color) {
  const bool draws = !picture.erases();
  if (is_loose && end.is_pin && draws) gx_display_pin_nocon(picture.vpid, end.point);
  if (end.is_selected && !end.is_pin && draws) gx_display_selvertex(picture.vpid, end.point);
  if (end.is_dotted)
    gx_display_dot(picture.vpid, gx_viewport_pt_real_to_pixel(picture.vpid, end.point),
                   gx_viewport_obj2d_to_pixel(picture.vpid, picture.file->dot_width),
                   end.is_selected ? gx_drawn_color(picture, 0, true) : segment_color);
}

void draw_segment(const net_t& net, int segment_id) {
  const auto& picture = net.picture;
  const auto& segment = gx_segment_info_ptr(*picture.file, segment_id);
  const gx_net_segment_t drawn{*picture.file, "gx_display_net", net.id, segment_id};
  const gx_segment_end_t end1 = drawn.end(1), end2 = drawn.end(2);
  drawn.check_width();
  if (segment.line_style < 0 || segment.line_style >= gx_nb_of_styles) {
    gx_debug(" gx_display_net : line style invalid !! :    net_id : %d   segment_id :%d\n", net.id,
             segment_id);
    gx_set_status(gx_code::invalid_style);
  }
  const bool selected = gx_is_selected(segment.gene);
  const bool marked =
      !picture.erases() &&
      (net.highlight != nullptr || gx_highlight_of(picture.file_index, segment_id) != nullptr);
  const int color = gx_drawn_color(picture, segment.line_color, selected || marked);
  const int style = selected ? gx_selected_style : marked ? 0 : segment.line_style;
  // The mark is for one segment between a pin and a free vertex.
  const bool is_loose = net.is_stub && end1.is_pin != end2.is_pin;
  draw_end(picture, end1, is_loose, color);
  draw_end(picture, end2, is_loose, color);
  gx_draw_thick_line(picture.vpid, color, style,
                     gx_viewport_pt_real_to_pixel(picture.vpid, end1.point),
                     gx_viewport_pt_real_to_pixel(picture.vpid, end2.point), segment.line_width);
}

// Draws the texts of a net; true when one of them names it.
bool draw_properties(const gx_picture_t& picture, int net_id) {
  const auto& file = *picture.file;
  bool named = false;
  for (int id = gx_inq_first_net_property_id(file, net_id); id > 0;
       id = gx_inq_next_net_property_id(file, net_id, id)) {
    if (gx_is_deleted(gx_object_id_ptr(file, id))) continue;
    gx_draw_prim(picture, id, 0, false);
    named = named || gx_iden(gx_view(gx_property_info_ptr(file, id).name), "NET");
  }
  return named;
}

// The live segments of a net.
template <typename Visit>
void visit_segments(const gx_file_gene_recf_t& file, int net_id, Visit visit) {
  for (int id = gx_inq_first_net_segment_id(file, net_id); id > 0;
       id = gx_inq_next_net_segment_id(file, net_id, id))
    if (!gx_is_deleted(gx_object_id_ptr(file, id))) visit(id);
}

// The name of a marked net, at the first end of a segment where there is room for it.
void draw_mark_name(const gx_picture_t& picture, int net_id, const gx_highlight_t& mark) {
  if (mark.name.len < 1) return;
  const auto& file = *picture.file;
  gx_display_probe_rec_t probe;
  probe.name = mark.name;
  const auto is_end = [&](int id) {
    if (!gx_object_id_ok(file, id)) return false;
    const gx_type type = gx_object_id_ptr(file, id).object_type;
    return type == gx_type::vertex_2d || type == gx_type::pinpropfam;
  };
  if (is_end(mark.vertex)) {
    probe.vertex = mark.vertex;
  } else {
    gx_object_id_t first = 0, fitting = 0;
    visit_segments(file, net_id, [&](int id) {
      const auto& segment = gx_segment_info_ptr(file, id);
      for (const gx_object_id_t end : {segment.vertex1, segment.vertex2}) {
        if (fitting != 0) return;
        if (first == 0) first = end;
        probe.vertex = end;
        if (gx_probe_fits(picture.vpid, picture.file_index, probe)) fitting = end;
      }
    });
    probe.vertex = fitting != 0 ? fitting : first;
  }
  if (probe.vertex != 0) gx_display_probe(picture.vpid, picture.file_index, probe);
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
  if (gx_is_hidden(record.gene)) return;
  if (!gx_part_object_inside_vp_bounds(picture.vpid, file, net_id, 0)) return;
  if (record.ptrto_probe != nullptr)
    gx_display_probe(picture.vpid, picture.file_index, *record.ptrto_probe);
  net_t net{picture, net_id, false, gx_highlight_of(picture.file_index, net_id)};
  if (!draw_properties(picture, net_id)) {
    int count = 0;
    visit_segments(file, net_id, [&](int) { ++count; });
    net.is_stub = count == 1;
  }
  visit_segments(file, net_id, [&](int id) { draw_segment(net, id); });
  if (net.highlight != nullptr && !picture.erases())
    draw_mark_name(picture, net_id, *net.highlight);
}

void gx_display_net(gx_vpid_t vpid, gx_file_index_t file_index, int net_id, gx_draw_mode mode) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, net_id, mode, "gx_display_net");
  const gx_batch_t batch;
  gx_draw_net(picture, net_id);
}
