#include "gx/display/strokes/stroke_text.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "gx/display/list_viewport.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/smooth.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/characters.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

// Glyphs divided by so many grid units per pixel, each scaled when it is drawn first.
struct gx_scaled_font_t {
  int by_x = 1, by_y = 1;
  std::unordered_map<char32_t, std::vector<gx_line16_t>> glyphs;
};

namespace {
constexpr std::size_t max_points = 256;
constexpr int least_legible = 6;  // pixels; a smaller smooth text is a bar

gx_point16_t pixel_at(int x, int y) {
  return {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)};
}

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
  const auto scaled = [&](gx_grid_point_t p) -> gx_point16_t {
    return {static_cast<std::int16_t>(p.x / font.by_x), static_cast<std::int16_t>(p.y / font.by_y)};
  };
  for (const gx_stroke_t stroke : gx_glyph(code))
    for (std::size_t i = 1; i < stroke.size(); ++i) {
      const gx_point16_t a = scaled(stroke[i - 1]), b = scaled(stroke[i]);
      add_segment(found->second, {a.x, a.y, b.x, b.y});
    }
  return found->second;
}

// The glyphs of a text; a sheet has texts of a few sizes.
gx_scaled_font_t& kept_font(int by_x, int by_y) {
  constexpr std::size_t most_sizes = 32;
  static std::map<std::pair<int, int>, gx_scaled_font_t> fonts;
  const auto found = fonts.find({by_x, by_y});
  if (found != fonts.end()) return found->second;
  if (fonts.size() >= most_sizes) fonts.clear();
  return fonts.emplace(std::pair(by_x, by_y), gx_scaled_font_t{by_x, by_y, {}}).first->second;
}

gx_scaled_font_t& font_of(int step, int height) {
  return kept_font(std::max(gx_glyph_advance / std::max(step, 1), 1),
                   std::max(gx_glyph_height / std::max(height, 1), 1));
}

struct screen_letters_t {
  int step = 0, height = 0, columns = 0;
};
screen_letters_t screen_letters(gx_vpid_t vpid) {
  const auto& v = gx_vext;
  if (vpid == v.viewport_list && !gx_list_is_plain())
    return {gx_list_step(), v.list_height, gx_list_width()};
  return {v.cmd_step, v.cmd_height, gx_max_text_length};
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
  const auto [step, height, columns] = screen_letters(vpid);
  const int n = std::min(static_cast<int>(rest.size()), columns);
  x = clamped(x, 0, v.bitmap_size.x);
  y = clamped(y, 0, v.bitmap_size.y);
  int width = columns * step + 1;
  if (!whole_line) width = n < columns ? (n + 1) * step + 2 : columns * step + 2;
  gx_pen_clear(x - 1, y - 1, width, height + height / 2 + 2);
  const int baseline = y + height;
  gx_canvas_t* const canvas = gx_canvas();
  const bool is_plain = step == v.cmd_step && height == v.cmd_height;
  gx_scaled_font_t& font = is_plain && v.strpt ? *v.strpt : font_of(step, height);
  const gx_letters_t letters{font.by_x, font.by_y, 0};
  for (const char32_t code : rest.substr(0, static_cast<std::size_t>(n))) {
    const auto strokes = scaled_glyph(font, code);
    if (canvas != nullptr)
      gx_smooth_letter(*canvas, letters, code, strokes, pixel_at(x, baseline), color);
    else
      for (const gx_line16_t& line : strokes)
        gx_pen_line(
            color, 0,
            {static_cast<std::int16_t>(x + line.x1), static_cast<std::int16_t>(baseline - line.y1),
             static_cast<std::int16_t>(x + line.x2),
             static_cast<std::int16_t>(baseline - line.y2)});
    x += step;
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
  gx_scaled_font_t& font = kept_font(grid_per_pixel(height), grid_per_pixel(height));
  const limits_t kept(clip);
  const auto shown = std::u32string_view(characters).substr(0, static_cast<std::size_t>(length));
  gx_canvas_t* const canvas = gx_canvas();
  if (canvas != nullptr && height < least_legible)
    return gx_text_bar(*canvas, shown, pixel_at(x, y), height, advance, rotation, color);
  const gx_letters_t letters{grid_per_pixel(height), grid_per_pixel(height), rotation};
  for (const char32_t code : shown) {
    const bool is_seen = x >= clip.xmin && x <= clip.xmax && y >= clip.ymin && y <= clip.ymax;
    if (is_seen && canvas != nullptr)
      gx_smooth_letter(*canvas, letters, code, scaled_glyph(font, code), pixel_at(x, y), color);
    else if (is_seen)
      for (const gx_line16_t& line : scaled_glyph(font, code)) {
        const gx_point16_t da = gx_turned(line.x1, line.y1, rotation);
        const gx_point16_t db = gx_turned(line.x2, line.y2, rotation);
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
    const gx_point16_t d = gx_turned(stroke[i].x / f, stroke[i].y / f, rotation);
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
