// The viewport table: rectangles of the window that hold one picture or text each.
#include "gx/display/viewports.h"

#include <algorithm>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
constexpr std::int64_t bounds_unit = 100000;  // of the drawable size
constexpr int max_grid_dots = 50;

gx_bounds16_t pixels_of(const gx_boundsreal_t& b) {
  const auto pixel = [](std::int32_t bound, std::int16_t size) {
    return static_cast<std::int16_t>(
        std::clamp<std::int64_t>(bound * std::int64_t{size} / bounds_unit, -20000, 20000));
  };
  const gx_point16_t size = gx_vext.bitmap_size;
  return {pixel(b.xmin, size.x), pixel(b.ymin, size.y), pixel(b.xmax, size.x),
          pixel(b.ymax, size.y)};
}

std::int16_t offset(std::int16_t v, int by) { return static_cast<std::int16_t>(v + by); }

// The record of a viewport that may be drawn in.
gx_viewport_rec_t& open_viewport(gx_vpid_t vpid, const char* operation) {
  if (!gx_vext.init_done) {
    gx_debug(" %s  : init not done : \n", operation);
    gx_set_status(gx_code::init_not_done);
  }
  if (!gx_viewport_ok(vpid)) gx_debug(" %s  : invalid view port : %d\n", operation, vpid);
  auto& vp = gx_viewport_rec(vpid);
  if (vp.vp_blocked) {
    gx_debug(" %s : view port blocked : %d\n", operation, vpid);
    gx_set_status(gx_code::viewport_blocked);
  }
  return vp;
}

void draw_border(const gx_viewport_rec_t& vp, int color) {
  const gx_bounds16_t& p = vp.pixel_bounds;
  gx_pen_clip(p.xmin - 1, p.ymin - 1, p.xmax + 2 - p.xmin, p.ymax + 2 - p.ymin);
  gx_display_rectangle({p.xmin, p.ymin}, {p.xmax, p.ymax}, 0, color, vp.border.pixel_width);
}
}  // namespace

bool gx_drawing_possible() { return gx_vext.screen != nullptr || gx_vext.viewport_id_max > 0; }

bool gx_is_seen() { return gx_front().shows_pictures; }

bool gx_viewport_ok(int vpid) {
  return vpid >= 1 && vpid <= std::min<int>(gx_max_viewports, gx_vext.viewport_id_max);
}

bool gx_is_picture_viewport(int vpid) {
  return vpid == gx_vext.viewport_edit || vpid == gx_vext.viewport_context ||
         vpid == gx_vext.viewport_activ;
}

gx_viewport_rec_t& gx_viewport_rec(int vpid) {
  if (!gx_viewport_ok(vpid)) gx_set_status(gx_code::viewport_id_invalid);
  return gx_at(gx_vext.viewport, vpid);
}

gx_bounds16_t gx_bounds_to_clipping_window(const gx_boundsreal_t& bounds,
                                           const gx_border_info& border) {
  const gx_bounds16_t p = pixels_of(bounds);
  const int w = border.pixel_width;
  return {offset(p.xmin, w - 1), offset(p.ymin, w - 1), offset(p.xmax, 1 - w),
          offset(p.ymax, 1 - w)};
}

bool gx_check_viewport_bounds(const gx_boundsreal_t& old_bounds, const gx_boundsreal_t& bounds) {
  const auto inside = [&](std::int32_t x, std::int32_t y) {
    return x > old_bounds.xmin && x < old_bounds.xmax && y > old_bounds.ymin && y < old_bounds.ymax;
  };
  return !inside(bounds.xmin, bounds.ymin) && !inside(bounds.xmin, bounds.ymax) &&
         !inside(bounds.xmax, bounds.ymin) && !inside(bounds.xmax, bounds.ymax);
}

void gx_viewport_create(const gx_boundsreal_t& bounds, const gx_border_info& border) {
  auto& v = gx_vext;
  if (!v.init_done) gx_set_status(gx_code::init_or_open_file_not_done);
  if (v.viewport_id_max >= gx_max_viewports) gx_set_status(gx_code::too_many_viewports);
  for (int i = 1; i <= v.viewport_id_max; ++i) {
    auto& old = gx_at(v.viewport, i);
    if (gx_check_viewport_bounds(old.bounds_vp, bounds)) continue;
    old.vp_blocked = true;
    gx_debug(" ??? viewport %d is now under the new viewport\n", i);
  }
  const auto vpid = static_cast<gx_vpid_t>(v.viewport_id_max + 1);
  v.viewport_id_max = vpid;
  auto& vp = gx_at(v.viewport, vpid);
  vp = {};
  vp.bounds_vp = bounds;
  vp.border = border;
  vp.pixel_bounds = pixels_of(bounds);
  vp.clip_wind = gx_bounds_to_clipping_window(bounds, border);
  gx_clear_viewport(vpid);
}

void gx_viewport_delete(gx_vpid_t vpid) {
  gx_viewport_rec(vpid);
  auto& v = gx_vext;
  const auto first = v.viewport.begin();
  std::move(first + vpid + 1, first + v.viewport_id_max + 1, first + vpid);
  gx_at(v.viewport, v.viewport_id_max) = {};
  --v.viewport_id_max;
}

void gx_viewport_select(gx_vpid_t vpid) {
  if (!gx_vext.init_done) gx_set_status(gx_code::init_or_open_file_not_done);
  if (!gx_drawing_possible()) return;
  const gx_bounds16_t& clip = gx_viewport_rec(vpid).clip_wind;
  gx_vext.viewport_current = vpid;
  gx_pen_clip(clip.xmin, clip.ymin, clip.xmax + 1 - clip.xmin, clip.ymax + 1 - clip.ymin);
}

void gx_draw_viewport_border(gx_vpid_t vpid) {
  if (!gx_drawing_possible()) return;
  const auto& vp = open_viewport(vpid, "draw_viewport_border");
  const gx_batch_t batch;
  draw_border(vp, vp.border.border_color);
  gx_viewport_select(vpid);
}

void gx_draw_new_viewport_border(gx_vpid_t vpid, int pixel_width, int color) {
  if (!gx_drawing_possible()) return;
  auto& vp = open_viewport(vpid, "draw_new_viewport_border");
  const gx_batch_t batch;
  draw_border(vp, vp.border.background_color);
  vp.border.pixel_width = static_cast<std::uint8_t>(std::clamp(pixel_width, 0, 255));
  vp.border.border_color = static_cast<std::uint8_t>(std::clamp(color, 0, gx_nb_of_colors - 1));
  gx_pen_flush();
  draw_border(vp, vp.border.border_color);
  gx_viewport_select(vpid);
}

void gx_clear_viewport(gx_vpid_t vpid) {
  if (!gx_drawing_possible()) return;
  const auto& vp = gx_viewport_rec(vpid);
  const gx_bounds16_t& p = vp.pixel_bounds;
  const gx_batch_t batch;
  // All that the clip rectangle lets through is cleared, up to the border of the present width.
  const int w = std::max<int>(vp.border.pixel_width, 1);
  gx_pen_clear(p.xmin + w, p.ymin + w, p.xmax - p.xmin + 1 - 2 * w, p.ymax - p.ymin + 1 - 2 * w);
  gx_draw_viewport_border(vpid);
}

void gx_clear_window() {
  const gx_batch_t batch;
  gx_pen_clear(1, 1, gx_vext.bitmap_size.x - 2, gx_vext.bitmap_size.y - 2);
}

void gx_viewports_update() {
  for (int i = 1; i <= gx_vext.viewport_id_max; ++i) {
    auto& vp = gx_at(gx_vext.viewport, i);
    vp.pixel_bounds = pixels_of(vp.bounds_vp);
    vp.clip_wind = gx_bounds_to_clipping_window(vp.bounds_vp, vp.border);
    // What was fitted into the old size and not moved since fits into the new one.
    if (vp.file_index > 0 && vp.bounds_part == vp.fit_part)
      gx_viewport_fit(static_cast<gx_vpid_t>(i), vp.fit_box);
  }
}

gx_point16_t gx_viewport_inq_pixel_min(gx_vpid_t vpid) {
  if (!gx_vext.init_done) gx_set_status(gx_code::init_not_done);
  if (!gx_drawing_possible()) return {};
  const gx_bounds16_t& p = gx_viewport_rec(vpid).pixel_bounds;
  return {p.xmin, p.ymin};
}

bool gx_inq_file_disp_vpn(gx_file_index_t file_index, gx_vpid_t vpid) {
  return gx_viewport_ok(vpid) && gx_viewport_rec(vpid).file_index == file_index;
}

bool gx_inq_file_displayed(gx_file_index_t file_index) {
  return gx_ptrto_gene_file_buf(file_index).displayed != 0;
}

void gx_viewport_display_text(gx_vpid_t vpid, std::string_view text, gx_point16_t position,
                              bool whole_line, int color) {
  if (!gx_drawing_possible()) return;
  const gx_bounds16_t& p = open_viewport(vpid, "gx_viewport_display_text").pixel_bounds;
  const int istart = vpid == gx_vext.viewport_list  ? gx_vext.istart_list
                     : vpid == gx_vext.viewport_cmd ? gx_vext.istart_cmd
                                                    : 1;
  gx_hortext(vpid, text, istart, p.xmin + position.x, p.ymin + position.y, whole_line, color);
}

void gx_viewport_draw_segment(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2, int color,
                              int style) {
  if (!gx_drawing_possible()) return;
  const gx_bounds16_t& p = open_viewport(vpid, "gx_viewport_draw_segment").pixel_bounds;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  gx_pen_line(
      color, style,
      {offset(p1.x, p.xmin), offset(p1.y, p.ymin), offset(p2.x, p.xmin), offset(p2.y, p.ymin)});
}

void gx_viewport_draw_grid(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2, int nx, int ny,
                           int color) {
  if (!gx_drawing_possible()) return;
  const gx_bounds16_t& p = open_viewport(vpid, "gx_viewport_draw_grid").pixel_bounds;
  if (nx < 2 || nx > max_grid_dots || ny < 2 || ny > max_grid_dots) {
    gx_debug(" gx_viewport_draw_grid  : invalid nstep : %d  %d  %d\n", nx, ny, max_grid_dots);
    gx_set_status(gx_code::viewport_id_invalid);
  }
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const int stepx = (p2.x - p1.x) * 1000 / (nx - 1), stepy = (p2.y - p1.y) * 1000 / (ny - 1);
  const int x0 = (p1.x + p.xmin) * 1000, y0 = (p1.y + p.ymin) * 1000;
  for (int j = 0; j < ny; ++j)
    for (int i = 0; i < nx; ++i) {
      const int x = (x0 + i * stepx) / 1000, y = (y0 + j * stepy) / 1000;
      const int size = i % 5 == 0 ? 2 : 1;  // every fifth column stands out
      gx_pen_box(color, x - (size - 1), y, size, size);
    }
}

bool gx_part_object_inside_vp_bounds(gx_vpid_t vpid, const gx_file_gene_recf_t& file, int id,
                                     int inst) {
  if (vpid < 1 || vpid > gx_max_viewports || vpid > gx_vext.viewport_id_max) {
    gx_set_status(gx_code::viewport_id_invalid);
  }
  const auto& shown = gx_at(gx_vext.viewport, vpid).bounds_part;
  return gx_bounds_overlap(gx_object_abs_origin_bounds(file, id, inst).bounds, shown);
}
