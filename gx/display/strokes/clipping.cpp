#include "gx/display/strokes/clipping.h"

#include <algorithm>
#include <cstdlib>

#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"

namespace {
struct window_t {
  int xmin, ymin, xmax, ymax;

  bool holds(int x, int y) const { return x >= xmin && x <= xmax && y >= ymin && y <= ymax; }
};

struct point_t {
  int x, y;
};

bool strictly_inside(const gx_bounds16_t& v, gx_point16_t p) {
  return p.x > v.xmin && p.x < v.xmax && p.y > v.ymin && p.y < v.ymax;
}

std::int16_t cut(int v, int low, int high) {
  return static_cast<std::int16_t>(std::clamp(v, low, high));
}

// The points where a slanted line crosses the edge of the window, the first and the last on its
// way; false when it does not.
bool crossings(const window_t& w, const gx_line16_t& line, point_t& first, point_t& last) {
  const std::int64_t dx = line.x2 - line.x1, dy = line.y2 - line.y1;
  const auto y_at = [&](int x) { return static_cast<int>(line.y1 + (x - line.x1) * dy / dx); };
  const auto x_at = [&](int y) { return static_cast<int>(line.x1 + (y - line.y1) * dx / dy); };
  // Along its longer side: two crossings of a steep line may have one x.
  const bool is_steep = std::abs(dy) > std::abs(dx);
  const auto way = [&](point_t p) {
    return is_steep ? (dy > 0 ? p.y : -p.y) : (dx > 0 ? p.x : -p.x);
  };
  bool found = false;
  for (const point_t p : {point_t{w.xmin, y_at(w.xmin)}, point_t{w.xmax, y_at(w.xmax)},
                          point_t{x_at(w.ymin), w.ymin}, point_t{x_at(w.ymax), w.ymax}}) {
    if (!w.holds(p.x, p.y)) continue;
    if (!found || way(p) < way(first)) first = p;
    if (!found || way(p) > way(last)) last = p;
    found = true;
  }
  return found;
}
}  // namespace

bool gx_line_clipping(gx_vpid_t vpid, gx_line16_t& line) {
  const auto& vp = gx_viewport_rec(vpid);
  if (vp.vp_blocked || (line.x1 == line.x2 && line.y1 == line.y2)) return false;
  const gx_bounds16_t& v = vp.clip_wind;
  const window_t w = {v.xmin + 1, v.ymin + 1, v.xmax - 1, v.ymax - 1};
  if (w.xmin > w.xmax || w.ymin > w.ymax) return false;
  if (w.holds(line.x1, line.y1) && w.holds(line.x2, line.y2)) return true;
  const auto [xlow, xhigh] = std::minmax(line.x1, line.x2);
  const auto [ylow, yhigh] = std::minmax(line.y1, line.y2);
  if (xhigh < w.xmin || xlow > w.xmax || yhigh < w.ymin || ylow > w.ymax) return false;
  if (line.y1 == line.y2) {
    line.x1 = cut(line.x1, w.xmin, w.xmax);
    line.x2 = cut(line.x2, w.xmin, w.xmax);
    return line.y1 > w.ymin && line.y1 < w.ymax;
  }
  if (line.x1 == line.x2) {
    line.y1 = cut(line.y1, w.ymin, w.ymax);
    line.y2 = cut(line.y2, w.ymin, w.ymax);
    return line.x1 > w.xmin && line.x1 < w.xmax;
  }
  point_t near1{}, near2{};
  if (!crossings(w, line, near1, near2)) return false;
  const gx_line16_t whole = line;
  if (!w.holds(whole.x1, whole.y1)) {
    line.x1 = static_cast<std::int16_t>(near1.x);
    line.y1 = static_cast<std::int16_t>(near1.y);
  }
  if (!w.holds(whole.x2, whole.y2)) {
    line.x2 = static_cast<std::int16_t>(near2.x);
    line.y2 = static_cast<std::int16_t>(near2.y);
  }
  return true;
}

bool gx_circle_clipping(gx_vpid_t vpid, gx_point16_t centre, int radius) {
  const gx_bounds16_t& v = gx_viewport_rec(vpid).clip_wind;
  return !(v.xmin > centre.x + radius || v.xmax < centre.x - radius || v.ymin > centre.y + radius ||
           v.ymax < centre.y - radius);
}

bool gx_filled_rectangle_clipping(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2) {
  const gx_bounds16_t& v = gx_viewport_rec(vpid).clip_wind;
  const window_t w = {v.xmin, v.ymin, v.xmax, v.ymax};
  return w.holds(p1.x, p1.y) && w.holds(p2.x, p2.y);
}

bool gx_arc_clipping(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2, gx_point16_t p3) {
  const auto& vp = gx_viewport_rec(vpid);
  const gx_bounds16_t& v = vp.clip_wind;
  return !vp.vp_blocked &&
         (strictly_inside(v, p1) || strictly_inside(v, p2) || strictly_inside(v, p3));
}
