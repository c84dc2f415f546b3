#include "gx/display/stroke_text.h"

#include <algorithm>
#include <array>
#include <vector>

#include "gx/display/pen.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

struct gx_scaled_font_t {
  std::array<std::vector<std::vector<gx_point16_t>>, 128> glyphs;  // by character code
};

namespace {
constexpr std::size_t max_points = 256;

std::int16_t clamped(int v, int low, int high) {
  return static_cast<std::int16_t>(std::clamp(v, std::min(low, high), std::max(low, high)));
}

// Grid units per pixel of a text of that height.
int grid_per_pixel(int height) {
  return height <= 0 ? 1000 : std::max(gx_glyph_height / height, 1);
}
}  // namespace

void gx_setarray_hortext() {
  auto& v = gx_vext;
  if (v.cmd_height == 0 || v.cmd_step == 0) return;
  v.coef_charh = std::max(gx_glyph_height / v.cmd_height, 1);
  v.coef_chars = std::max(gx_glyph_advance / v.cmd_step, 1);
  auto font = std::make_shared<gx_scaled_font_t>();
  for (int code = 0; code < 128; ++code) {
    auto& strokes = font->glyphs[static_cast<std::size_t>(code)];
    for (const gx_stroke_t stroke : gx_glyph(static_cast<char>(code))) {
      auto& scaled = strokes.emplace_back();
      for (const gx_grid_point_t p : stroke)
        scaled.push_back({static_cast<std::int16_t>(p.x / v.coef_chars),
                          static_cast<std::int16_t>(p.y / v.coef_charh)});
    }
  }
  v.strpt = std::move(font);
}

std::span<const std::vector<gx_point16_t>> gx_scaled_glyph(char c) {
  const auto code = static_cast<unsigned char>(c);
  if (!gx_vext.strpt || code >= gx_vext.strpt->glyphs.size()) return {};
  return gx_vext.strpt->glyphs[code];
}

void gx_hortext(gx_vpid_t vpid, std::string_view text, int istart, int x, int y, bool whole_line,
                int color) {
  if (!gx_drawing_possible()) return;
  const auto& v = gx_vext;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const auto skipped = std::min(static_cast<std::size_t>(std::max(istart, 1) - 1), text.size());
  const auto rest = text.substr(skipped);
  const int n = static_cast<int>(std::min(rest.size(), std::size_t{gx_max_text_length}));
  x = clamped(x, 0, v.bitmap_size.x);
  y = clamped(y, 0, v.bitmap_size.y);
  int width = gx_max_text_length * v.cmd_step + 1;
  if (!whole_line)
    width = n < gx_max_text_length ? (n + 1) * v.cmd_step + 2 : gx_max_text_length * v.cmd_step + 2;
  gx_pen_clear(x - 1, y - 1, width, v.cmd_height + v.cmd_height / 2 + 2);
  const int baseline = y + v.cmd_height;
  for (const char c : rest.substr(0, static_cast<std::size_t>(n))) {
    for (const auto& stroke : gx_scaled_glyph(c))
      for (std::size_t i = 1; i < stroke.size(); ++i)
        gx_pen_line(color, 0,
                    {static_cast<std::int16_t>(x + stroke[i - 1].x),
                     static_cast<std::int16_t>(baseline - stroke[i - 1].y),
                     static_cast<std::int16_t>(x + stroke[i].x),
                     static_cast<std::int16_t>(baseline - stroke[i].y)});
    x += v.cmd_step;
  }
}

void gx_text(gx_vpid_t vpid, std::string_view text, int x, int y, int height, int rotation,
             int color, bool opaque) {
  if (!gx_drawing_possible()) return;
  const auto& v = gx_vext;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const int length = static_cast<int>(std::min(text.size(), std::size_t{gx_max_text_length}));
  height = std::max(height, 1);
  if (height > v.bitmap_size.y || length * height > v.bitmap_size.x) return;
  const int advance = gx_glyph_advance / grid_per_pixel(height);
  const int dx = rotation == 1 || rotation == 3 ? 0 : advance;
  const int dy = rotation == 1 ? -advance : rotation == 3 ? advance : 0;
  const auto& clip = v.viewport[static_cast<std::size_t>(vpid)].clip_wind;
  if (opaque) {
    gx_bounds16_t box;
    const auto place = [&](int xmin, int ymin, int xmax, int ymax) {
      box = {clamped(xmin, clip.xmin, clip.xmax), clamped(ymin, clip.ymin, clip.ymax),
             clamped(xmax, clip.xmin, clip.xmax), clamped(ymax, clip.ymin, clip.ymax)};
    };
    const int extent = length * advance;
    if (rotation == 1)
      place(x - height, y - extent, x + height / 2, y);
    else if (rotation == 3)
      place(x - height / 2, y, x + height, y + extent);
    else
      place(x, y - height, x + extent, y + height / 2);
    gx_pen_clear(box.xmin, box.ymin, box.xmax - box.xmin, box.ymax - box.ymin);
  }
  for (const char c : text.substr(0, static_cast<std::size_t>(length))) {
    if (x >= clip.xmin && x <= clip.xmax && y >= clip.ymin && y <= clip.ymax)
      for (const gx_stroke_t stroke : gx_glyph(c))
        gx_polyline_char_2d16(vpid, x, y, height, rotation, stroke, color);
    x += dx;
    y += dy;
  }
}

void gx_polyline_char_2d16(gx_vpid_t vpid, int x0, int y0, int height, int rotation,
                           gx_stroke_t stroke, int color) {
  if (stroke.size() > max_points) gx_set_status(gx_code::invalid_polyline_2d);
  const int f = grid_per_pixel(height);
  const auto& clip = gx_vext.viewport[static_cast<std::size_t>(vpid)].clip_wind;
  std::array<gx_point16_t, max_points> points;
  for (std::size_t i = 0; i < stroke.size(); ++i) {
    const int gx = stroke[i].x / f, gy = stroke[i].y / f;
    const int dx = rotation == 1 ? -gy : rotation == 3 ? gy : gx;
    const int dy = rotation == 1 ? -gx : rotation == 3 ? gx : -gy;
    points[i] = {clamped(x0 + dx, clip.xmin, clip.xmax), clamped(y0 + dy, clip.ymin, clip.ymax)};
  }
  gx_polyline_2d16(std::span(points.data(), stroke.size()), color);
}

void gx_polyline_2d16(std::span<const gx_point16_t> points, int color) {
  if (points.size() > max_points) gx_set_status(gx_code::invalid_polyline_2d);
  const gx_batch_t batch;
  const auto kept = [](gx_point16_t p) -> gx_point16_t {
    return {clamped(p.x, 1, gx_vext.bitmap_size.x - 1), clamped(p.y, 1, gx_vext.bitmap_size.y - 1)};
  };
  for (std::size_t i = 1; i < points.size(); ++i) {
    const gx_point16_t a = kept(points[i - 1]), b = kept(points[i]);
    gx_pen_line(color, 0, {a.x, a.y, b.x, b.y});
  }
}
