// Clipped strokes, dots and outlines given in pixels.
#include "gx/display/strokes/draw_strokes.h"

#include <algorithm>
#include <cstdlib>

#include "gx/db/object_access.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/clipping.h"
#include "gx/display/strokes/dashes.h"
#include "gx/display/strokes/smooth.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
constexpr int dot_pitch = 9;  // pixels from dot to dot of a dotted outline

std::int16_t to_pixel(int v) { return static_cast<std::int16_t>(std::clamp(v, -32768, 32767)); }
}  // namespace

gx_picture_t gx_picture_of(gx_vpid_t vpid, gx_file_index_t file_index, int object_id,
                           gx_draw_mode mode, const char* operation) {
  if (!gx_viewport_ok(vpid) || vpid != gx_vext.viewport_current) {
    gx_debug(" %s : view port invalid : %d  file_index : %d   obj_id : %d\n", operation, vpid,
             file_index, object_id);
    gx_set_status(gx_code::viewport_id_invalid);
  }
  return {vpid, file_index, &gx_ptrto_gene_file_buf(file_index), mode};
}

int gx_drawn_color(const gx_picture_t& picture, int own, bool selected) {
  if (picture.erases()) return gx_viewport_rec(picture.vpid).border.background_color;
  return selected ? gx_vext.color_obj_selected : own;
}

void gx_draw_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b) {
  gx_line16_t line{a.x, a.y, b.x, b.y};
  if (gx_line_clipping(vpid, line)) gx_pen_line(color, style, line);
}

void gx_draw_polyline(gx_vpid_t vpid, int color, int style, std::span<const gx_point16_t> points) {
  for (std::size_t i = 1; i < points.size(); ++i)
    gx_draw_line(vpid, color, style, points[i - 1], points[i]);
}

void gx_draw_thick_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b,
                        int width) {
  gx_line16_t line{a.x, a.y, b.x, b.y};
  if (!gx_line_clipping(vpid, line)) return;
  if (gx_canvas_t* const canvas = gx_canvas()) {
    canvas->line(gx_pixel_of(color), gx_dash_list(style), line, width * gx_line_width());
    return;
  }
  const int dx = std::abs(line.x2 - line.x1), dy = std::abs(line.y2 - line.y1);
  const int larger = std::max({dx, dy, 1}), smaller = std::min(dx, dy);
  // Slanted thin lines lie nearer to each other than their offsets.
  const int lines = width == 1 ? 1 : width + smaller * width * 4 / (larger * 10);
  if (lines < 2) {
    gx_pen_line(color, style, line);
    return;
  }
  const bool flat = dx > dy;
  for (int k = 1; k <= lines; ++k) {
    const int offset = k - (lines / 2 - 1);
    gx_line16_t thin = line;
    for (auto* across : flat ? std::array{&thin.y1, &thin.y2} : std::array{&thin.x1, &thin.x2})
      *across = static_cast<std::int16_t>(*across + offset);
    gx_pen_line(color, style, thin);
  }
}

void gx_display_dot(gx_vpid_t vpid, gx_point16_t pixel, int half_size, int color) {
  if (!gx_drawing_possible() || half_size < 1) return;
  const gx_bounds16_t& clip = gx_viewport_rec(vpid).clip_wind;
  if (pixel.x - half_size < clip.xmin || pixel.x + half_size > clip.xmax ||
      pixel.y - half_size < clip.ymin || pixel.y + half_size > clip.ymax)
    return;
  const gx_batch_t batch;
  gx_pen_box(color, pixel.x - half_size, pixel.y - half_size, 2 * half_size, 2 * half_size);
}

void gx_display_rectangle(gx_point16_t p1, gx_point16_t p2, int style, int color, int pixel_width) {
  if (!gx_drawing_possible()) return;
  const gx_batch_t batch;
  const auto [xmin, xmax] = std::minmax(p1.x, p2.x);
  const auto [ymin, ymax] = std::minmax(p1.y, p2.y);
  for (int k = 0; k < pixel_width; ++k) {
    const std::int16_t left = to_pixel(xmin + k), right = to_pixel(xmax - k);
    const std::int16_t top = to_pixel(ymin + k), bottom = to_pixel(ymax - k);
    gx_pen_line(color, style, {left, top, right, top}, true);
    gx_pen_line(color, style, {right, top, right, bottom}, true);
    gx_pen_line(color, style, {right, bottom, left, bottom}, true);
    gx_pen_line(color, style, {left, bottom, left, top}, true);
  }
}

void gx_display_rectangle_dot(gx_point16_t p1, gx_point16_t p2, int color, int dot_size) {
  if (!gx_drawing_possible()) return;
  const gx_batch_t batch;
  const auto [xmin, xmax] = std::minmax(p1.x, p2.x);
  const auto [ymin, ymax] = std::minmax(p1.y, p2.y);
  const auto dot = [&](int x, int y) { gx_pen_box(color, x, y, dot_size, dot_size); };
  // Calls `place` with the distances of the dots along a side.
  const auto along = [](int length, auto place) {
    const int dots = length / dot_pitch;
    if (dots <= 1) return;
    const int step = length * 1000 / dots;
    for (int i = 0; i < dots; ++i) place(i * step / 1000);
  };
  along(xmax - xmin, [&, top = ymin, bottom = ymax, left = xmin](int at) {
    dot(left + at, top);
    dot(left + at, bottom);
  });
  along(ymax - ymin, [&, top = ymin, left = xmin, right = xmax](int at) {
    dot(left, top + at);
    dot(right, top + at);
  });
}
