#include "gx/display/strokes/canvas.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

namespace {
constexpr int whole = 255;  // coverage
constexpr double full_turn = 360 * 64;

// What a window shows of a tile, as one number: two of them are nothing else.
constexpr std::uint64_t unknown = 0, all_ground = 1, is_digest = 2;

gx_pixel_t mixed(gx_pixel_t under, gx_pixel_t over, int coverage) {
  const auto part = static_cast<std::uint32_t>(coverage + (coverage >> 7));  // 0..256
  const std::uint32_t rest = 256 - part;
  const std::uint32_t red_blue = (under & 0xFF00FFU) * rest + (over & 0xFF00FFU) * part;
  const std::uint32_t green = (under & 0xFF00U) * rest + (over & 0xFF00U) * part;
  return (red_blue >> 8U & 0xFF00FFU) | (green >> 8U & 0xFF00U);
}

int coverage_of(double part) { return static_cast<int>(std::clamp(part, 0.0, 1.0) * whole + 0.5); }
}  // namespace

gx_canvas_t::gx_canvas_t(int width, int height, gx_pixel_t ground)
    : width_(std::max(width, 1)),
      height_(std::max(height, 1)),
      columns_((width_ + tile_width - 1) / tile_width),
      rows_((height_ + tile_height - 1) / tile_height),
      ground_(ground),
      clip_{0, 0, width_, height_},
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), ground),
      tiles_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {}

gx_pixel_box_t gx_canvas_t::inside(const gx_pixel_box_t& box) const {
  const int left = std::clamp(box.x, 0, width_), top = std::clamp(box.y, 0, height_);
  return {left, top, std::clamp(box.x + box.width, left, width_) - left,
          std::clamp(box.y + box.height, top, height_) - top};
}

gx_pixel_box_t gx_canvas_t::clipped(const gx_pixel_box_t& box) const {
  const int left = std::max(box.x, clip_.x), top = std::max(box.y, clip_.y);
  return {left, top, std::min(box.x + box.width, clip_.x + clip_.width) - left,
          std::min(box.y + box.height, clip_.y + clip_.height) - top};
}

template <typename Visit>
void gx_canvas_t::visit_tiles(const gx_pixel_box_t& box, Visit visit) {
  if (box.width < 1 || box.height < 1) return;
  const int right = (box.x + box.width - 1) / tile_width;
  const int bottom = (box.y + box.height - 1) / tile_height;
  for (int r = box.y / tile_height; r <= bottom; ++r)
    for (int c = box.x / tile_width; c <= right; ++c)
      visit(tiles_[static_cast<std::size_t>(r * columns_ + c)], c * tile_width, r * tile_height);
}

// Something is drawn there.
void gx_canvas_t::touch(const gx_pixel_box_t& box) {
  visit_tiles(box, [](tile_t& tile, int, int) {
    tile.is_ground = false;
    tile.is_changed = true;
  });
}

void gx_canvas_t::clip(const gx_box16_t& box) {
  clip_ = inside({box.x, box.y, box.width, box.height});
}

void gx_canvas_t::mix(int x, int y, gx_pixel_t color, int coverage) {
  gx_pixel_t& pixel = pixels_[at(x, y)];
  if (is_exclusive_or_)
    pixel ^= coverage * 2 > whole ? color ^ ground_ : 0;
  else
    pixel = coverage >= whole ? color : mixed(pixel, color, coverage);
}

void gx_canvas_t::box(gx_pixel_t color, const gx_pixel_box_t& wanted, int coverage) {
  const gx_pixel_box_t box = clipped(wanted);
  if (box.width < 1 || box.height < 1) return;
  touch(box);
  const bool is_plain = coverage >= whole && !is_exclusive_or_;
  for (int y = box.y; y < box.y + box.height; ++y) {
    gx_pixel_t* const row = &pixels_[at(box.x, y)];
    if (is_plain)
      std::fill(row, row + box.width, color);
    else
      for (int x = box.x; x < box.x + box.width; ++x) mix(x, y, color, coverage);
  }
}

// Column by column along the longer way, or row by row: what the line covers of each is a run of
// pixels, of which the first and the last may be covered in part.
void gx_canvas_t::slanted_line(gx_pixel_t color, point_t a, point_t b, double width) {
  const bool is_steep = std::abs(b.y - a.y) > std::abs(b.x - a.x);
  if (is_steep) {
    std::swap(a.x, a.y);
    std::swap(b.x, b.y);
  }
  if (a.x > b.x) std::swap(a, b);
  const double slope = (b.y - a.y) / std::max(b.x - a.x, 1e-9);
  const double half = width / 2 * std::sqrt(1 + slope * slope);
  const int low = is_steep ? clip_.x : clip_.y;
  const int high = low + (is_steep ? clip_.width : clip_.height) - 1;
  const int begin = is_steep ? clip_.y : clip_.x;
  const int end = begin + (is_steep ? clip_.height : clip_.width) - 1;
  const int from = std::max(static_cast<int>(std::lround(a.x)), begin);
  const int to = std::min(static_cast<int>(std::lround(b.x)), end);
  const int tile_length = is_steep ? tile_height : tile_width;
  for (int first = from; first <= to;) {
    const int last = std::min((first / tile_length + 1) * tile_length - 1, to);
    int lowest = high, highest = low;
    for (int u = first; u <= last; ++u) {
      const double centre = a.y + slope * (u - a.x) + 0.5;
      const double bottom = centre - half, top = centre + half;
      const int v_from = std::max(static_cast<int>(std::floor(bottom)), low);
      const int v_to = std::min(static_cast<int>(std::ceil(top)) - 1, high);
      for (int v = v_from; v <= v_to; ++v) {
        const double part = std::min(v + 1.0, top) - std::max(double(v), bottom);
        if (is_steep)
          mix(v, u, color, coverage_of(part));
        else
          mix(u, v, color, coverage_of(part));
      }
      lowest = std::min(lowest, v_from);
      highest = std::max(highest, v_to);
    }
    const int u_length = last - first + 1, v_length = highest - lowest + 1;
    touch(is_steep ? gx_pixel_box_t{lowest, first, v_length, u_length}
                   : gx_pixel_box_t{first, lowest, u_length, v_length});
    first = last + 1;
  }
}

void gx_canvas_t::solid_line(gx_pixel_t color, point_t a, point_t b, double width) {
  if (a.x != b.x && a.y != b.y) return slanted_line(color, a, b, width);
  // Half a pixel more at each end, and the corners of lines that meet there are filled.
  const int before = (static_cast<int>(width) - 1) / 2, thick = static_cast<int>(width);
  const int left = static_cast<int>(std::lround(std::min(a.x, b.x))) - before;
  const int top = static_cast<int>(std::lround(std::min(a.y, b.y))) - before;
  const int right = static_cast<int>(std::lround(std::max(a.x, b.x))) - before + thick;
  const int bottom = static_cast<int>(std::lround(std::max(a.y, b.y))) - before + thick;
  box(color, {left, top, right - left, bottom - top});
}

void gx_canvas_t::line(gx_pixel_t color, std::span<const char> dashes, const gx_line16_t& line,
                       int width) {
  const point_t a{double(line.x1), double(line.y1)}, b{double(line.x2), double(line.y2)};
  if (dashes.empty()) return solid_line(color, a, b, width);
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  const auto point = [&](double along) -> point_t {
    const double part = length > 0 ? std::min(along / length, 1.0) : 0;
    return {a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part};
  };
  std::size_t dash = 0;
  for (double along = 0; along <= length; dash = (dash + 1) % dashes.size()) {
    const double next = along + dashes[dash] * width;
    if (dash % 2 == 0) solid_line(color, point(along), point(next - 1), width);
    along = next;
  }
}

// The part of a circle whose pixels lie between the two angles, in 1/64 degree; all for a turn.
void gx_canvas_t::ring(gx_pixel_t color, const gx_arc16_t& arc, double from, double extent,
                       double width) {
  const double radius = arc.size / 2.0, x = arc.x + radius, y = arc.y + radius;
  const double outer = radius + width / 2 + 0.5, inner = radius - width / 2 - 0.5;
  const bool is_turn = extent >= full_turn;
  const auto is_between = [&](double dx, double dy) {
    double angle = std::atan2(-dy, dx) / std::numbers::pi * full_turn / 2 - from;
    angle -= std::floor(angle / full_turn) * full_turn;
    return angle <= extent;
  };
  const auto draw = [&](int row, double left, double right) {
    const int first = std::max(static_cast<int>(std::floor(left)), clip_.x);
    const int last = std::min(static_cast<int>(std::ceil(right)), clip_.x + clip_.width - 1);
    if (last < first) return;
    touch({first, row, last - first + 1, 1});
    for (int column = first; column <= last; ++column) {
      const double dx = column - x, dy = row - y;
      const double part = width / 2 + 0.5 - std::abs(std::sqrt(dx * dx + dy * dy) - radius);
      if (part > 0 && (is_turn || is_between(dx, dy))) mix(column, row, color, coverage_of(part));
    }
  };
  const int top = std::max(static_cast<int>(std::floor(y - outer)), clip_.y);
  const int bottom = std::min(static_cast<int>(std::ceil(y + outer)), clip_.y + clip_.height - 1);
  for (int row = top; row <= bottom; ++row) {
    const double dy = row - y;
    const double reach = std::sqrt(std::max(outer * outer - dy * dy, 0.0));
    const double hole = inner > std::abs(dy) ? std::sqrt(inner * inner - dy * dy) : 0;
    if (hole < 2) {
      draw(row, x - reach, x + reach);
    } else {
      draw(row, x - reach, x - hole);
      draw(row, x + hole, x + reach);
    }
  }
}

void gx_canvas_t::arc(gx_pixel_t color, std::span<const char> dashes, const gx_arc16_t& arc,
                      int width) {
  const double from = arc.extent < 0 ? arc.angle + arc.extent : arc.angle;
  const double extent = std::abs(arc.extent);
  if (dashes.empty()) return ring(color, arc, from, extent, width);
  const double per_pixel = full_turn / (std::numbers::pi * std::max(arc.size, 1));
  std::size_t dash = 0;
  for (double along = 0; along < extent; dash = (dash + 1) % dashes.size()) {
    const double next = along + dashes[dash] * width * per_pixel;
    if (dash % 2 == 0) ring(color, arc, from + along, std::min(next, extent) - along, width);
    along = next;
  }
}

void gx_canvas_t::cover(gx_pixel_t color, const gx_coverage_t& coverage, int x, int y) {
  const gx_pixel_box_t whole_box{x + coverage.x, y + coverage.y, coverage.width, coverage.height};
  const gx_pixel_box_t box = clipped(whole_box);
  if (box.width < 1 || box.height < 1) return;
  touch(box);
  for (int row = box.y; row < box.y + box.height; ++row) {
    const std::uint8_t* const parts =
        &coverage.rows[static_cast<std::size_t>((row - whole_box.y) * coverage.width)];
    for (int column = box.x; column < box.x + box.width; ++column)
      if (const int part = parts[column - whole_box.x]; part > 0) mix(column, row, color, part);
  }
}

void gx_canvas_t::clear(const gx_pixel_box_t& wanted) {
  const gx_pixel_box_t box = inside(wanted);
  const int right = box.x + box.width, bottom = box.y + box.height;
  visit_tiles(box, [&](tile_t& tile, int x, int y) {
    if (tile.is_ground) return;
    const int to_x = std::min(x + tile_width, width_), to_y = std::min(y + tile_height, height_);
    tile.is_ground = x >= box.x && y >= box.y && to_x <= right && to_y <= bottom;
    tile.is_changed = true;
    for (int row = std::max(y, box.y); row < std::min(to_y, bottom); ++row)
      std::fill(
          &pixels_[at(std::max(x, box.x), row)],
          &pixels_[at(std::max(x, box.x), row)] + (std::min(to_x, right) - std::max(x, box.x)),
          ground_);
  });
}

void gx_canvas_t::set_ground(gx_pixel_t ground) {
  if (ground == ground_) return;
  ground_ = ground;
  std::ranges::fill(pixels_, ground);
  std::ranges::fill(tiles_, tile_t{});
}

std::vector<gx_pixel_t> gx_canvas_t::copy(const gx_pixel_box_t& wanted) const {
  const gx_pixel_box_t box = inside(wanted);
  std::vector<gx_pixel_t> pixels;
  pixels.reserve(static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height));
  for (int y = box.y; y < box.y + box.height; ++y)
    pixels.insert(pixels.end(), row(y) + box.x, row(y) + box.x + box.width);
  return pixels;
}

void gx_canvas_t::put(const gx_pixel_box_t& wanted, std::span<const gx_pixel_t> pixels) {
  const gx_pixel_box_t box = inside(wanted);
  const auto width = static_cast<std::size_t>(box.width);
  if (pixels.size() < width * static_cast<std::size_t>(box.height)) return;
  touch(box);
  for (int y = box.y; y < box.y + box.height; ++y, pixels = pixels.subspan(width))
    std::copy_n(pixels.begin(), width, &pixels_[at(box.x, y)]);
}

void gx_canvas_t::forget_shown(const gx_pixel_box_t& wanted) {
  visit_tiles(inside(wanted), [](tile_t& tile, int, int) {
    tile.shown = unknown;
    tile.is_changed = true;
  });
}

// Four sums side by side, so that the processor need not wait for one.
std::uint64_t gx_canvas_t::digest(const gx_pixel_box_t& box) const {
  constexpr std::uint64_t odd = 0x9E3779B97F4A7C15U;
  std::array<std::uint64_t, 4> sums{1, 2, 3, 4};
  for (int y = box.y; y < box.y + box.height; ++y) {
    const gx_pixel_t* const pixels = row(y) + box.x;
    int x = 0;
    for (; x + 8 <= box.width; x += 8) {
      std::array<std::uint64_t, 4> words;
      std::memcpy(words.data(), pixels + x, sizeof words);
      for (std::size_t i = 0; i < sums.size(); ++i)
        sums[i] = std::rotl((sums[i] ^ words[i]) * odd, 29);
    }
    for (; x < box.width; ++x) sums[0] = std::rotl((sums[0] ^ pixels[x]) * odd, 29);
  }
  std::uint64_t sum = 0;
  for (const std::uint64_t part : sums) sum = (std::rotl(sum, 17) ^ part) * odd;
  return sum | is_digest;
}

std::vector<gx_pixel_box_t> gx_canvas_t::take_changes() {
  std::vector<gx_pixel_box_t> boxes;
  for (int r = 0; r < rows_; ++r) {
    bool joins = false;  // the last box ends before this tile
    for (int c = 0; c < columns_; ++c) {
      tile_t& tile = tiles_[static_cast<std::size_t>(r * columns_ + c)];
      const gx_pixel_box_t box = inside({c * tile_width, r * tile_height, tile_width, tile_height});
      const auto before = tile.shown;
      if (std::exchange(tile.is_changed, false))
        tile.shown = tile.is_ground ? all_ground : digest(box);
      const bool is_new = tile.shown != before;
      if (is_new && joins)
        boxes.back().width += box.width;
      else if (is_new)
        boxes.push_back(box);
      joins = is_new;
    }
  }
  return boxes;
}
