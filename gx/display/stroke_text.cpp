#include "gx/display/stroke_text.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "gx/display/pen.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/characters.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

// Glyphs divided by so many grid units per pixel, each scaled when it is drawn first.
struct gx_scaled_font_t {
  int by_x = 1, by_y = 1;
  std::unordered_map<char32_t, std::vector<gx_line16_t>> glyphs;
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

// Small texts fold many strokes onto the same pixels: a point on the end of another stroke, or a
// stroke a second time, adds nothing.
void add_segment(std::vector<gx_line16_t>& glyph, const gx_line16_t& line) {
  const bool is_point = line.x1 == line.x2 && line.y1 == line.y2;
  for (const gx_line16_t& there : glyph) {
    if (there == line) return;
    if (is_point && ((there.x1 == line.x1 && there.y1 == line.y1) ||
                     (there.x2 == line.x1 && there.y2 == line.y1)))
      return;
  }
  glyph.push_back(line);
}

std::span<const gx_line16_t> scaled_glyph(gx_scaled_font_t& font, char32_t code) {
  const auto [found, is_new] = font.glyphs.try_emplace(code);
  if (!is_new) return found->second;
  const auto pixel = [&](gx_grid_point_t p) -> gx_point16_t {
    return {static_cast<std::int16_t>(p.x / font.by_x), static_cast<std::int16_t>(p.y / font.by_y)};
  };
  for (const gx_stroke_t stroke : gx_glyph(code))
    for (std::size_t i = 1; i < stroke.size(); ++i) {
      const gx_point16_t a = pixel(stroke[i - 1]), b = pixel(stroke[i]);
      add_segment(found->second, {a.x, a.y, b.x, b.y});
    }
  return found->second;
}

// The glyphs of a sheet text; a sheet has texts of a few sizes.
gx_scaled_font_t& sheet_font(int grid_units) {
  constexpr std::size_t most_sizes = 32;
  static std::map<int, gx_scaled_font_t> fonts;
  const auto found = fonts.find(grid_units);
  if (found != fonts.end()) return found->second;
  if (fonts.size() >= most_sizes) fonts.clear();
  return fonts.emplace(grid_units, gx_scaled_font_t{grid_units, grid_units, {}}).first->second;
}

// Keeps pixels within the clip window and the window.
struct limits_t {
  int xmin, ymin, xmax, ymax;

  explicit limits_t(const gx_bounds16_t& clip)
      : xmin(std::clamp<int>(clip.xmin, 1, std::max(gx_vext.bitmap_size.x - 1, 1))),
        ymin(std::clamp<int>(clip.ymin, 1, std::max(gx_vext.bitmap_size.y - 1, 1))),
        xmax(std::clamp<int>(clip.xmax, 1, std::max(gx_vext.bitmap_size.x - 1, 1))),
        ymax(std::clamp<int>(clip.ymax, 1, std::max(gx_vext.bitmap_size.y - 1, 1))) {}
  gx_point16_t operator()(int x, int y) const {
    return {clamped(x, xmin, xmax), clamped(y, ymin, ymax)};
  }
};

// A point of a glyph, y upwards, in a text of that rotation: its way from the text's origin.
gx_point16_t turned(int x, int y, int rotation) {
  const auto px = static_cast<std::int16_t>(x), py = static_cast<std::int16_t>(y);
  const auto minus = [](std::int16_t v) { return static_cast<std::int16_t>(-v); };
  if (rotation == 1) return {minus(py), minus(px)};
  if (rotation == 3) return {py, px};
  return {px, minus(py)};
}
}  // namespace

void gx_setarray_hortext() {
  auto& v = gx_vext;
  if (v.cmd_height == 0 || v.cmd_step == 0) return;
  v.coef_charh = std::max(gx_glyph_height / v.cmd_height, 1);
  v.coef_chars = std::max(gx_glyph_advance / v.cmd_step, 1);
  v.strpt = std::make_shared<gx_scaled_font_t>(gx_scaled_font_t{v.coef_chars, v.coef_charh, {}});
}

std::span<const gx_line16_t> gx_scaled_glyph(char32_t code) {
  if (!gx_vext.strpt) return {};
  return scaled_glyph(*gx_vext.strpt, code);
}

void gx_hortext(gx_vpid_t vpid, std::string_view text, int istart, int x, int y, bool whole_line,
                int color) {
  if (!gx_drawing_possible() || !gx_is_seen()) return;
  const auto& v = gx_vext;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const std::u32string characters = gx_characters(text);
  const auto skipped =
      std::min(static_cast<std::size_t>(std::max(istart, 1) - 1), characters.size());
  const auto rest = std::u32string_view(characters).substr(skipped);
  const int n = static_cast<int>(std::min(rest.size(), std::size_t{gx_max_text_length}));
  x = clamped(x, 0, v.bitmap_size.x);
  y = clamped(y, 0, v.bitmap_size.y);
  int width = gx_max_text_length * v.cmd_step + 1;
  if (!whole_line)
    width = n < gx_max_text_length ? (n + 1) * v.cmd_step + 2 : gx_max_text_length * v.cmd_step + 2;
  gx_pen_clear(x - 1, y - 1, width, v.cmd_height + v.cmd_height / 2 + 2);
  const int baseline = y + v.cmd_height;
  for (const char32_t code : rest.substr(0, static_cast<std::size_t>(n))) {
    for (const gx_line16_t& line : gx_scaled_glyph(code))
      gx_pen_line(
          color, 0,
          {static_cast<std::int16_t>(x + line.x1), static_cast<std::int16_t>(baseline - line.y1),
           static_cast<std::int16_t>(x + line.x2), static_cast<std::int16_t>(baseline - line.y2)});
    x += v.cmd_step;
  }
}

void gx_text(gx_vpid_t vpid, std::string_view text, int x, int y, int height, int rotation,
             int color, bool opaque) {
  if (!gx_drawing_possible() || !gx_is_seen()) return;
  const auto& v = gx_vext;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  height = std::max(height, 1);
  const std::u32string characters = gx_characters(text);
  if (height > v.bitmap_size.y || std::ssize(characters) * height > v.bitmap_size.x) return;
  const int length = static_cast<int>(std::min(characters.size(), std::size_t{gx_max_text_length}));
  const int advance = gx_glyph_advance / grid_per_pixel(height);
  const int dx = rotation == 1 || rotation == 3 ? 0 : advance;
  const int dy = rotation == 1 ? -advance : rotation == 3 ? advance : 0;
  const auto& clip = gx_at(v.viewport, vpid).clip_wind;
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
  gx_scaled_font_t& font = sheet_font(grid_per_pixel(height));
  const limits_t kept(clip);
  for (const char32_t code : characters.substr(0, static_cast<std::size_t>(length))) {
    if (x >= clip.xmin && x <= clip.xmax && y >= clip.ymin && y <= clip.ymax)
      for (const gx_line16_t& line : scaled_glyph(font, code)) {
        const gx_point16_t da = turned(line.x1, line.y1, rotation);
        const gx_point16_t db = turned(line.x2, line.y2, rotation);
        const gx_point16_t a = kept(x + da.x, y + da.y), b = kept(x + db.x, y + db.y);
        gx_pen_line(color, 0, {a.x, a.y, b.x, b.y});
      }
    x += dx;
    y += dy;
  }
}

void gx_polyline_char_2d16(gx_vpid_t vpid, int x0, int y0, int height, int rotation,
                           gx_stroke_t stroke, int color) {
  if (stroke.size() > max_points) gx_set_status(gx_code::invalid_polyline_2d);
  const int f = grid_per_pixel(height);
  const auto& clip = gx_at(gx_vext.viewport, vpid).clip_wind;
  std::array<gx_point16_t, max_points> points;
  for (std::size_t i = 0; i < stroke.size(); ++i) {
    const gx_point16_t d = turned(stroke[i].x / f, stroke[i].y / f, rotation);
    points[i] = {clamped(x0 + d.x, clip.xmin, clip.xmax), clamped(y0 + d.y, clip.ymin, clip.ymax)};
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
