// Sweeps over the lines that spans lie on: by direction, by offset, along.
#include "import/drawing/runs.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace {

// A direction without a length or a sense.
struct direction_t {
  std::int64_t dx = 0, dy = 0;
  friend auto operator<=>(const direction_t&, const direction_t&) = default;
};

// Where a point lies as seen in a direction: the line through it, and how far along.
struct place_t {
  std::int64_t line = 0, along = 0;
  friend auto operator<=>(const place_t&, const place_t&) = default;
};

direction_t direction_of(const gxi_span_t& span) {
  std::int64_t dx = std::int64_t{span.to.x} - span.from.x;
  std::int64_t dy = std::int64_t{span.to.y} - span.from.y;
  if (dx < 0 || (dx == 0 && dy < 0)) {
    dx = -dx;
    dy = -dy;
  }
  const std::int64_t common = std::max<std::int64_t>(std::gcd(dx, dy), 1);
  return {dx / common, dy / common};
}

place_t place_of(gx_pointreal_t p, direction_t d) {
  return {d.dx * p.y - d.dy * p.x, d.dx * p.x + d.dy * p.y};
}

struct laid_span_t {
  place_t first, last;
  int span = 0;
};

struct laid_point_t {
  place_t place;
  int point = 0;
};

std::vector<laid_point_t> lay(std::span<const gx_pointreal_t> points, direction_t direction) {
  std::vector<laid_point_t> laid(points.size());
  for (std::size_t i = 0; i < points.size(); ++i)
    laid[i] = {place_of(points[i], direction), static_cast<int>(i)};
  std::sort(laid.begin(), laid.end(), [](const auto& a, const auto& b) {
    return a.place != b.place ? a.place < b.place : a.point < b.point;
  });
  return laid;
}

// The points from `first` to `last` when they have not been sorted.
void scan(std::span<const gx_pointreal_t> points, direction_t direction, place_t first,
          place_t last, std::vector<int>& found) {
  std::vector<laid_point_t> on;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto place = place_of(points[i], direction);
    if (place >= first && place <= last) on.push_back({place, static_cast<int>(i)});
  }
  std::stable_sort(on.begin(), on.end(),
                   [](const auto& a, const auto& b) { return a.place < b.place; });
  for (const auto& point : on) found.push_back(point.point);
}

}  // namespace

std::vector<gxi_run_t> gxi_runs(std::span<const gxi_span_t> spans,
                                std::span<const gx_pointreal_t> points) {
  std::map<direction_t, std::vector<laid_span_t>> by_direction;
  for (std::size_t i = 0; i < spans.size(); ++i) {
    if (spans[i].from == spans[i].to) continue;
    const auto direction = direction_of(spans[i]);
    laid_span_t laid{place_of(spans[i].from, direction), place_of(spans[i].to, direction),
                     static_cast<int>(i)};
    if (laid.last < laid.first) std::swap(laid.first, laid.last);
    by_direction[direction].push_back(laid);
  }
  std::vector<gxi_run_t> runs;
  for (auto& [direction, laid] : by_direction) {
    std::sort(laid.begin(), laid.end(), [](const auto& a, const auto& b) {
      return a.first != b.first ? a.first < b.first : a.span < b.span;
    });
    // Sorting all points pays where a direction has more than a few spans.
    constexpr std::size_t few = 8;
    std::vector<laid_point_t> sorted;
    if (laid.size() > few) sorted = lay(points, direction);
    for (std::size_t i = 0; i < laid.size();) {
      auto& run = runs.emplace_back();
      const place_t first = laid[i].first;
      place_t last = laid[i].last;
      for (; i < laid.size() && laid[i].first <= last && laid[i].first.line == last.line; ++i) {
        last = std::max(last, laid[i].last);
        run.spans.push_back(laid[i].span);
      }
      if (sorted.empty()) {
        scan(points, direction, first, last, run.points);
        continue;
      }
      auto at = std::lower_bound(sorted.begin(), sorted.end(), first,
                                 [](const auto& a, place_t b) { return a.place < b; });
      for (; at != sorted.end() && at->place <= last; ++at) run.points.push_back(at->point);
    }
  }
  return runs;
}
