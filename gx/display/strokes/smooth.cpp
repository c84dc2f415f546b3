#include "gx/display/strokes/smooth.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <unordered_map>

#include "gx/display/screen.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/pen_state.h"
#include "gx/display/strokes/stroke_font.h"
#include "gx/text/at.h"
#include "gx/vext.h"

namespace {
constexpr int largest_kept = 64;          // pixels; higher letters are drawn line by line
constexpr std::size_t most_kept = 16384;  // letters of all sizes
constexpr int eighths = 8;
constexpr int bar_coverage = 96;

// The strokes of a letter are a ninth of its height wide, within limits.
int stroke_eighths(const gx_letters_t& letters) {
  const int height = gx_glyph_height / std::max(letters.up, 1);
  return std::clamp(height * eighths / 9, eighths,
                    std::max(gx_line_width() * 10, height * eighths / 16));
}

double distance(double x, double y, const gx_line16_t& line) {
  const double dx = line.x2 - line.x1, dy = line.y2 - line.y1, length = dx * dx + dy * dy;
  const double px = x - line.x1, py = y - line.y1;
  const double along = length > 0 ? std::clamp((px * dx + py * dy) / length, 0.0, 1.0) : 0;
  return std::hypot(px - along * dx, py - along * dy);
}

gx_coverage_t letter_coverage(std::span<const gx_line16_t> strokes, double width) {
  gx_coverage_t result;
  if (strokes.empty()) return result;
  const int margin = static_cast<int>(std::ceil(width / 2));
  int left = INT16_MAX, top = INT16_MAX, right = INT16_MIN, bottom = INT16_MIN;
  for (const auto& line : strokes) {
    left = std::min<int>({left, line.x1, line.x2});
    right = std::max<int>({right, line.x1, line.x2});
    top = std::min<int>({top, line.y1, line.y2});
    bottom = std::max<int>({bottom, line.y1, line.y2});
  }
  result.x = left - margin;
  result.y = top - margin;
  result.width = right + margin + 1 - result.x;
  result.height = bottom + margin + 1 - result.y;
  result.rows.reserve(static_cast<std::size_t>(result.width * result.height));
  for (int y = result.y; y < result.y + result.height; ++y)
    for (int x = result.x; x < result.x + result.width; ++x) {
      double nearest = width;
      for (const auto& line : strokes) nearest = std::min(nearest, distance(x, y, line));
      const double part = std::clamp(width / 2 + 0.5 - nearest, 0.0, 1.0);
      result.rows.push_back(static_cast<std::uint8_t>(std::lround(part * 255)));
    }
  return result;
}

std::vector<gx_line16_t> turned_strokes(std::span<const gx_line16_t> strokes, int rotation) {
  std::vector<gx_line16_t> lines;
  for (const auto& stroke : strokes) {
    const gx_point16_t a = gx_turned(stroke.x1, stroke.y1, rotation);
    const gx_point16_t b = gx_turned(stroke.x2, stroke.y2, rotation);
    lines.push_back({a.x, a.y, b.x, b.y});
  }
  return lines;
}
}  // namespace

bool gx_set_smooth(bool on) {
  gx_pen_flush();
  auto& p = gx_pen();
  const auto* const screen = gx_vext.screen;
  p.is_smooth = on && screen != nullptr && screen->takes_pixels();
  p.canvas.reset();
  p.kept_areas.clear();
  p.clip_known = false;
  return p.is_smooth == on || screen == nullptr;
}

gx_pixel_t gx_pixel_of(int color) {
  const gx_color_t& c = gx_at(gx_vext.colorrec, color);
  const auto part = [](std::uint16_t value) { return static_cast<std::uint8_t>(value >> 8U); };
  return gx_pixel({part(c.red), part(c.green), part(c.blue)});
}

gx_canvas_t* gx_canvas() {
  if (!gx_vext.pen || !gx_vext.pen->is_smooth || gx_vext.screen == nullptr) return nullptr;
  auto& canvas = gx_vext.pen->canvas;
  const int width = gx_vext.bitmap_size.x + 1, height = gx_vext.bitmap_size.y + 1;
  const gx_pixel_t ground = gx_pixel_of(0);
  if (!canvas || canvas->width() != width || canvas->height() != height)
    canvas = std::make_unique<gx_canvas_t>(width, height, ground);
  canvas->set_ground(ground);
  return canvas.get();
}

void gx_set_line_width(int width) {
  constexpr int plain_height = 1080;
  gx_pen_flush();
  const auto* const screen = gx_vext.screen;
  if (width == 0)
    width = screen == nullptr ? 1 : (screen->height() + plain_height / 2) / plain_height;
  gx_pen().line_width = std::clamp(width, 1, gx_max_line_width);
}

int gx_line_width() { return gx_vext.pen ? gx_vext.pen->line_width : 1; }

void gx_forget_shown() {
  if (gx_canvas_t* const canvas = gx_canvas())
    canvas->forget_shown({0, 0, canvas->width(), canvas->height()});
}

void gx_smooth_letter(gx_canvas_t& canvas, const gx_letters_t& letters, char32_t code,
                      std::span<const gx_line16_t> strokes, gx_point16_t at, int color) {
  if (strokes.empty()) return;
  const int width = stroke_eighths(letters);
  const gx_pixel_t pixel = gx_pixel_of(color);
  if (gx_glyph_height / std::max(letters.up, 1) > largest_kept) {
    for (gx_line16_t line : turned_strokes(strokes, letters.rotation)) {
      for (auto* const x : {&line.x1, &line.x2}) *x = static_cast<std::int16_t>(*x + at.x);
      for (auto* const y : {&line.y1, &line.y2}) *y = static_cast<std::int16_t>(*y + at.y);
      canvas.line(pixel, {}, line, width / eighths);
    }
    return;
  }
  static std::unordered_map<std::uint64_t, gx_coverage_t> kept;
  if (kept.size() >= most_kept) kept.clear();
  const int turn = letters.rotation == 1 || letters.rotation == 3 ? letters.rotation : 0;
  std::uint64_t key = code;
  for (const int part : {letters.across, letters.up, turn, width})
    key = key * 2048 + static_cast<std::uint64_t>(part);
  const auto [found, is_new] = kept.try_emplace(key);
  if (is_new)
    found->second =
        letter_coverage(turned_strokes(strokes, turn), static_cast<double>(width) / eighths);
  canvas.cover(pixel, found->second, at.x, at.y);
}

void gx_text_bar(gx_canvas_t& canvas, std::u32string_view text, gx_point16_t at, int height,
                 int advance, int rotation, int color) {
  const gx_pixel_t pixel = gx_pixel_of(color);
  const int thick = std::max(height * 3 / 4, 1), step = std::max(advance, 1);
  for (std::size_t begin = 0; begin < text.size();) {
    begin = std::min(text.find_first_not_of(U' ', begin), text.size());
    const std::size_t end = std::min(text.find(U' ', begin), text.size());
    const int from = static_cast<int>(begin) * step;
    const int length = std::max(static_cast<int>(end - begin) * step - (step > 2 ? 1 : 0), 0);
    if (rotation == 1)
      canvas.box(pixel, {at.x - thick, at.y - from - length, thick, length}, bar_coverage);
    else if (rotation == 3)
      canvas.box(pixel, {at.x, at.y + from, thick, length}, bar_coverage);
    else
      canvas.box(pixel, {at.x + from, at.y - thick, length, thick}, bar_coverage);
    begin = end;
  }
}
