#include "gx/display/sheet/probe.h"

#include <array>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
constexpr std::int32_t step = 5000;     // of its line and box, design units
constexpr std::int32_t advance = 6250;  // a character of its name
constexpr int margin = 3;               // pixels left free at the viewport's edge

// Where a probe stands, in pixels: its end, the box, and the baseline of its name.
struct place_t {
  gx_point16_t start, near, far, text;
  bool begins_inside = false, ends_inside = false;
};

place_t place_of_probe(gx_vpid_t vpid, const gx_file_gene_recf_t& file,
                       const gx_display_probe_rec_t& probe) {
  const bool is_vertex = gx_object_id_ptr(file, probe.vertex).object_type == gx_type::vertex_2d;
  const gx_pointreal_t p = is_vertex ? gx_object_abs_origin(file, probe.vertex, 0)
                                     : gx_pin_abs_origin(file, probe.vertex);
  const auto pixel = [&](std::int64_t dx, std::int64_t dy) {
    return gx_viewport_pt_real_to_pixel(vpid, {gx_saturated(p.x + dx), gx_saturated(p.y + dy)});
  };
  const gx_bounds16_t& v = gx_viewport_rec(vpid).pixel_bounds;
  const auto inside = [&](gx_point16_t q) {
    return q.x >= v.xmin + margin && q.x <= v.xmax - margin && q.y >= v.ymin + margin &&
           q.y <= v.ymax - margin;
  };
  const std::int64_t width = std::int64_t{advance} * probe.name.len;
  place_t place{pixel(0, 0), pixel(step, step), pixel(2 * step + width, 3 * step),
                pixel(step * 3 / 2, step * 5 / 2)};
  place.begins_inside = inside(place.start) && inside(place.near);
  place.ends_inside = inside(place.far);
  return place;
}
}  // namespace

bool gx_probe_fits(gx_vpid_t vpid, gx_file_index_t file_index,
                   const gx_display_probe_rec_t& probe) {
  const place_t place = place_of_probe(vpid, gx_ptrto_gene_file_buf(file_index), probe);
  return place.begins_inside && place.ends_inside;
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
  if (gx_is_deleted(object)) return;
  const place_t place = place_of_probe(vpid, file, probe);
  if (!place.begins_inside) return;
  const gx_batch_t batch;
  gx_draw_line(vpid, gx_white, 0, place.start, place.near);
  if (!place.ends_inside) {
    gx_debug_line("  gx_display_probe : point_pt2_outside  : ");
    return;
  }
  const gx_point16_t near = place.near, far = place.far;
  const std::array<gx_point16_t, 5> box{near, {far.x, near.y}, far, {near.x, far.y}, near};
  gx_draw_polyline(vpid, gx_white, 0, box);
  gx_text(vpid, gx_view(probe.name), place.text.x, place.text.y,
          gx_viewport_obj2d_to_pixel(vpid, step), 0, gx_white);
}
