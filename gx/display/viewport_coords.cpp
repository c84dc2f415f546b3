#include "gx/display/viewport_coords.h"

#include <algorithm>
#include <cstdlib>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
constexpr std::int64_t max_pixel = 20000;
constexpr std::int64_t smallest_area = 5000;  // that is zoomed onto, design units
// The part of the design shown stays within these, so that differences fit 32 bits.
constexpr std::int64_t max_design = 1'000'000'000;

std::int32_t in_design(std::int64_t v) {
  return static_cast<std::int32_t>(std::clamp(v, -max_design, max_design));
}

bool shows_open_file(const gx_viewport_rec_t& vp) {
  return vp.file_index >= 1 && vp.file_index <= gx_vext.num_file_open;
}

int pixel_width(const gx_viewport_rec_t& vp) {
  return std::max(vp.pixel_bounds.xmax - vp.pixel_bounds.xmin, 1);
}
int pixel_height(const gx_viewport_rec_t& vp) {
  return std::max(vp.pixel_bounds.ymax - vp.pixel_bounds.ymin, 1);
}

// Shows the design around (cx, cy) at the present scale.
void centre(gx_viewport_rec_t& vp, std::int64_t cx, std::int64_t cy) {
  const std::int64_t hw = std::int64_t{pixel_width(vp)} * vp.object_scale / 2;
  const std::int64_t hh = std::int64_t{pixel_height(vp)} * vp.object_scale / 2;
  vp.bounds_part = {in_design(cx - hw), in_design(cy - hh), in_design(cx + hw), in_design(cy + hh)};
}

// Shows another part of the same size. At the end of the design space the view stops rather than
// shrinks.
void move_part(gx_viewport_rec_t& vp, std::int64_t dx, std::int64_t dy) {
  gx_boundsreal_t& b = vp.bounds_part;
  const gx_boundsreal_t moved = {in_design(b.xmin + dx), in_design(b.ymin + dy),
                                 in_design(b.xmax + dx), in_design(b.ymax + dy)};
  if (std::int64_t{moved.xmax} - moved.xmin == std::int64_t{b.xmax} - b.xmin &&
      std::int64_t{moved.ymax} - moved.ymin == std::int64_t{b.ymax} - b.ymin)
    b = moved;
}
}  // namespace

gx_vpid_t gx_viewport_pixel_to_vpid(gx_point16_t pixel) {
  for (int i = 1; i <= gx_vext.viewport_id_max; ++i) {
    const auto& vp = gx_at(gx_vext.viewport, i);
    const gx_bounds16_t& p = vp.pixel_bounds;
    if (!vp.vp_blocked && pixel.x > p.xmin && pixel.x < p.xmax && pixel.y > p.ymin &&
        pixel.y < p.ymax)
      return static_cast<gx_vpid_t>(i);
  }
  return 0;
}

gx_vpid_t gx_viewport_pixel_to_obj2d(gx_point16_t pixel, gx_pointreal_t& point) {
  point = {};
  const gx_vpid_t vpid = gx_viewport_pixel_to_vpid(pixel);
  if (vpid == 0 || !gx_is_picture_viewport(vpid)) return vpid;
  const auto& vp = gx_viewport_rec(vpid);
  if (vp.file_index < 1 || vp.file_index > gx_max_files) return vpid;
  const std::int64_t scale = vp.object_scale;
  point.x = gx_saturated(vp.bounds_part.xmin + (pixel.x - vp.pixel_bounds.xmin) * scale);
  point.y = gx_saturated(vp.bounds_part.ymin + (pixel.y - vp.pixel_bounds.ymin) * scale);
  return vpid;
}

gx_point16_t gx_viewport_pt_real_to_pixel(gx_vpid_t vpid, gx_pointreal_t p) {
  if (!gx_drawing_possible()) return {};
  const auto& vp = gx_viewport_rec(vpid);
  if (!shows_open_file(vp)) return {};
  const std::int64_t scale = vp.object_scale;
  const auto pixel = [scale](std::int16_t first, std::int32_t at, std::int32_t start) {
    return static_cast<std::int16_t>(
        std::clamp(first + at / scale - start / scale, -max_pixel, max_pixel));
  };
  return {pixel(vp.pixel_bounds.xmin, p.x, vp.bounds_part.xmin),
          pixel(vp.pixel_bounds.ymin, p.y, vp.bounds_part.ymin)};
}

int gx_viewport_obj2d_to_pixel(gx_vpid_t vpid, std::int32_t length) {
  if (!gx_drawing_possible()) return 0;
  const auto& vp = gx_viewport_rec(vpid);
  if (!shows_open_file(vp)) return 0;
  const std::int64_t pixels = std::int64_t{length} / vp.object_scale;
  return static_cast<int>(std::min(pixels < 0 ? -pixels : pixels, max_pixel));
}

bool gx_pixels_near(gx_point16_t a, gx_point16_t b, int pixels) {
  return std::abs(a.x - b.x) <= pixels && std::abs(a.y - b.y) <= pixels;
}

gx_boundsreal_t gx_area_of(gx_pointreal_t p1, gx_pointreal_t p2) {
  if (p2.x == p1.x) p2.x = gx_saturated(std::int64_t{p1.x} + smallest_area);
  if (p2.y == p1.y) p2.y = gx_saturated(std::int64_t{p1.y} + smallest_area);
  return {std::min(p1.x, p2.x), std::min(p1.y, p2.y), std::max(p1.x, p2.x), std::max(p1.y, p2.y)};
}

void gx_viewport_fit(gx_vpid_t vpid, const gx_boundsreal_t& box) {
  if (!gx_drawing_possible()) return;
  auto& vp = gx_viewport_rec(vpid);
  const std::int64_t width = std::int64_t{box.xmax} - box.xmin;
  const std::int64_t height = std::int64_t{box.ymax} - box.ymin;
  std::int64_t scale = std::max(width / pixel_width(vp), height / pixel_height(vp));
  scale += scale / 20;
  const std::int64_t largest = 2 * max_design / std::max(pixel_width(vp), pixel_height(vp));
  vp.object_scale = static_cast<std::int32_t>(std::clamp<std::int64_t>(scale, 1, largest));
  centre(vp, box.xmin / 2 + box.xmax / 2, box.ymin / 2 + box.ymax / 2);
  vp.fit_box = box;
  vp.fit_part = vp.bounds_part;
}

gx_shown_t gx_viewport_shown(gx_vpid_t vpid) {
  const auto& vp = gx_viewport_rec(vpid);
  return {vp.bounds_part, vp.object_scale};
}

void gx_viewport_show(gx_vpid_t vpid, const gx_shown_t& shown) {
  if (!gx_drawing_possible()) return;
  auto& vp = gx_viewport_rec(vpid);
  const auto& part = shown.part;
  const bool fits = (std::int64_t{part.xmax} - part.xmin) / shown.scale == pixel_width(vp) &&
                    (std::int64_t{part.ymax} - part.ymin) / shown.scale == pixel_height(vp);
  vp.object_scale = shown.scale;
  vp.bounds_part = part;
  if (!fits) centre(vp, part.xmin / 2 + part.xmax / 2, part.ymin / 2 + part.ymax / 2);
}

void gx_viewport_translate(gx_vpid_t vpid, int dy_sign, int dx_sign, std::int32_t amount) {
  if (!gx_drawing_possible()) return;
  move_part(gx_viewport_rec(vpid), std::int64_t{dx_sign} * amount, std::int64_t{dy_sign} * amount);
}

void gx_viewport_pan(gx_vpid_t vpid, int dx, int dy) {
  if (!gx_drawing_possible()) return;
  auto& vp = gx_viewport_rec(vpid);
  move_part(vp, -std::int64_t{dx} * vp.object_scale, -std::int64_t{dy} * vp.object_scale);
}

bool gx_viewport_zoom_at(gx_vpid_t vpid, gx_point16_t pixel, int num, int den) {
  if (!gx_drawing_possible() || num < 1 || den < 1) return false;
  auto& vp = gx_viewport_rec(vpid);
  const std::int64_t old_scale = vp.object_scale;
  std::int64_t scale = old_scale * num / den;
  if (num > den && scale == old_scale) ++scale;  // small scales grow too
  const std::int64_t largest = 2 * max_design / std::max(pixel_width(vp), pixel_height(vp));
  scale = std::clamp<std::int64_t>(scale, 1, largest);
  if (scale == old_scale) return false;
  const std::int64_t dx = pixel.x - vp.pixel_bounds.xmin, dy = pixel.y - vp.pixel_bounds.ymin;
  const std::int64_t xmin = vp.bounds_part.xmin + dx * (old_scale - scale);
  const std::int64_t ymin = vp.bounds_part.ymin + dy * (old_scale - scale);
  vp.object_scale = static_cast<std::int32_t>(scale);
  vp.bounds_part = {in_design(xmin), in_design(ymin), in_design(xmin + pixel_width(vp) * scale),
                    in_design(ymin + pixel_height(vp) * scale)};
  return true;
}
