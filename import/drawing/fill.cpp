#include "import/drawing/fill.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

// Rows are as high as a thin line is wide at the usual scale, unless these would be too many.
constexpr std::int32_t row_height = 250;
constexpr std::int32_t most_rows = 32, least_rows = 4;
constexpr int corners_of_circle = 32;
constexpr double pi = 3.14159265358979323846;

std::vector<gx_pointreal_t> outline_of(const gxm_shape_t& shape) {
  if (shape.type == gx_type::polyline_2d) return shape.points;
  std::vector<gx_pointreal_t> corners;
  for (int i = 0; i < corners_of_circle; ++i) {
    const double angle = 2 * pi * i / corners_of_circle;
    corners.push_back(
        {static_cast<std::int32_t>(std::lround(shape.points[0].x + shape.radius * std::cos(angle))),
         static_cast<std::int32_t>(
             std::lround(shape.points[0].y + shape.radius * std::sin(angle)))});
  }
  return corners;
}

// Where the outline crosses a height, from left to right.
std::vector<std::int32_t> crossings(const std::vector<gx_pointreal_t>& outline, double height) {
  std::vector<std::int32_t> found;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const auto &a = outline[i], &b = outline[(i + 1) % outline.size()];
    if ((a.y < height) == (b.y < height)) continue;
    const double part = (height - a.y) / (static_cast<double>(b.y) - a.y);
    found.push_back(static_cast<std::int32_t>(std::lround(a.x + part * (b.x - a.x))));
  }
  std::sort(found.begin(), found.end());
  return found;
}

void fill(const gxm_shape_t& shape, std::vector<gxm_shape_t>& boxes) {
  const auto outline = outline_of(shape);
  if (outline.size() < 3) return;
  const auto [low, high] = std::minmax_element(
      outline.begin(), outline.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
  const double top = low->y, height = high->y - top;
  const int rows =
      std::clamp(static_cast<std::int32_t>(height / row_height), least_rows, most_rows);
  const auto row_at = [&](int row) {
    return static_cast<std::int32_t>(std::lround(top + height * row / rows));
  };
  for (int row = 0; row < rows; ++row) {
    const auto across = crossings(outline, top + height * (row + 0.5) / rows);
    for (std::size_t i = 0; i + 1 < across.size(); i += 2)
      boxes.push_back({.type = gx_type::rectangle_2d,
                       .points = {{across[i], row_at(row)}, {across[i + 1], row_at(row + 1)}},
                       .color = shape.color,
                       .filled = true});
  }
}

}  // namespace

void gxi_fill_with_boxes(std::vector<gxm_shape_t>& shapes) {
  const auto needs_boxes = [](const gxm_shape_t& shape) {
    return shape.filled && (shape.type == gx_type::polyline_2d || shape.type == gx_type::circle_2d);
  };
  if (std::none_of(shapes.begin(), shapes.end(), needs_boxes)) return;
  std::vector<gxm_shape_t> all;
  for (auto& shape : shapes) {
    std::vector<gxm_shape_t> boxes;
    if (needs_boxes(shape)) fill(shape, boxes);
    all.push_back(std::move(shape));
    std::move(boxes.begin(), boxes.end(), std::back_inserter(all));
  }
  shapes = std::move(all);
}
