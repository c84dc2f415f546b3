// Dots and outlines given in pixels.
#include "gx/display/shapes.h"

#include <algorithm>

#include "gx/display/pen.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"

namespace {
constexpr int dot_pitch = 9;  // pixels from dot to dot of a dotted outline

std::int16_t to_pixel(int v) { return static_cast<std::int16_t>(std::clamp(v, -32768, 32767)); }
}  // namespace

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
