// The page frame and the field of grid dots.
#include "gx/display/sheet/grid.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "gx/db/object_access.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"

namespace {
constexpr int dot_color = 7;
constexpr std::int64_t most_steps = 40;        // across the shorter side, with dots shown
constexpr std::int64_t smallest_pitch = 2000;  // of the dots, in thousandths of a pixel
constexpr int last_dot_pixel = 10000;

// The dots of one axis: the pixel of the first, and how far they go.
struct axis_t {
  std::int64_t start = 0, pitch = 0;  // thousandths of a pixel
  int low = 0, high = 0;              // the dots lie strictly between
};

axis_t axis_of(std::int32_t step, std::int32_t scale, std::int32_t part_min, int pixel_min,
               int clip_min, int clip_max, int frame_near, int frame_far) {
  std::int64_t first = part_min / step;
  if (part_min % step < 0) --first;  // the multiple at or below
  const std::int64_t units = first * step - part_min;
  return {std::int64_t{pixel_min} * 1000 + units * 1000 / scale, std::int64_t{step} * 1000 / scale,
          std::max(clip_min, frame_near), std::min({clip_max, frame_far, last_dot_pixel})};
}

void draw_dots(const gx_picture_t& picture, const gx_object_grid_rec_t& grid, gx_point16_t near,
               gx_point16_t far) {
  const auto& vp = gx_viewport_rec(picture.vpid);
  const std::int64_t step64 = std::abs(std::int64_t{grid.step_point});
  if (step64 == 0 || step64 > INT32_MAX) return;
  const auto step = static_cast<std::int32_t>(step64);
  const auto& clip = vp.clip_wind;
  const axis_t x = axis_of(step, vp.object_scale, vp.bounds_part.xmin, vp.pixel_bounds.xmin,
                           clip.xmin, clip.xmax, near.x, far.x);
  const axis_t y = axis_of(step, vp.object_scale, vp.bounds_part.ymin, vp.pixel_bounds.ymin,
                           clip.ymin, clip.ymax, near.y, far.y);
  if (x.pitch < smallest_pitch || y.pitch < smallest_pitch) return;
  const int color = gx_drawn_color(picture, gx_color_of(gx_role::page, dot_color), false);
  for (std::int64_t py = y.start; py / 1000 < y.high; py += y.pitch) {
    const int pixel_y = static_cast<int>(py / 1000);
    if (pixel_y <= y.low) continue;
    for (std::int64_t px = x.start; px / 1000 < x.high; px += x.pitch) {
      const int pixel_x = static_cast<int>(px / 1000);
      if (pixel_x > x.low) gx_pen_box(color, pixel_x, pixel_y, 1, 1);
    }
  }
}
}  // namespace

gx_object_id_t gx_object_inq_grid_id(const gx_file_gene_recf_t& file) { return file.grid_obj_id; }

void gx_set_grid_visibility(gx_file_index_t file_index, gx_vpid_t vpid) {
  if (!gx_drawing_possible()) return;
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  if (file.grid_obj_id == 0) return;  // a symbol file may have none
  if (gx_object_id_ptr(file, file.grid_obj_id).object_type != gx_type::grid_2d) {
    gx_debug_line("gx_set_grid_visibility : object_type <> gx_tgrid_2d ");
    gx_set_status(gx_code::page_obj_id_invalid);
  }
  const auto& grid = gx_grid_info_ptr(file, file.grid_obj_id);
  const std::int64_t step = std::abs(std::int64_t{grid.step_point});
  if (step == 0) {
    gx_debug_line("gx_set_grid_visibility : grid_step < 1 ");
    gx_set_status(gx_code::page_obj_id_invalid);
  }
  const gx_boundsreal_t& part = gx_viewport_rec(vpid).bounds_part;
  const std::int64_t nx = (std::int64_t{part.xmax} - part.xmin) / step;
  const std::int64_t ny = (std::int64_t{part.ymax} - part.ymin) / step;
  const bool visible = std::min(nx, ny) <= most_steps && grid.grid_on != 0;
  gx_set_object_unvisible(file, file.grid_obj_id, !visible);
}

void gx_draw_grid(const gx_picture_t& picture, const gx_shape_t& page) {
  const auto& grid = gx_grid_info_ptr(*picture.file, page.object);
  if (gx_viewport_rec(picture.vpid).vp_blocked) return;
  const gx_point16_t near = gx_viewport_pt_real_to_pixel(picture.vpid, page.points[0]);
  const gx_point16_t far = gx_viewport_pt_real_to_pixel(picture.vpid, page.points[1]);
  const std::array<gx_point16_t, 5> frame{near, {far.x, near.y}, far, {near.x, far.y}, near};
  gx_draw_polyline(picture.vpid,
                   gx_drawn_color(picture, gx_color_of(gx_role::page, page.color), false), 0,
                   frame);
  if (!gx_is_unvisible(grid.gene) && grid.grid_on != 0) draw_dots(picture, grid, near, far);
}
