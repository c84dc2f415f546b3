#include "import/kicad/picture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "import/drawing/placement.h"
#include "import/kicad/net_names.h"

namespace {

constexpr double scale = static_cast<double>(gxm_step) / 12'700;
constexpr double letter_height = 0.75;  // letters here are wider, and are kept at the width
constexpr int largest_text = 500'000, thin = 3'000, thick = 6'000;

std::int32_t scaled(double length) {
  return static_cast<std::int32_t>(std::lround(length * scale));
}

gx_pointreal_t plus(gx_pointreal_t a, gx_pointreal_t b) { return {a.x + b.x, a.y + b.y}; }

std::int32_t width_of(std::size_t length, std::int32_t height) {
  const auto whole = static_cast<std::int32_t>(length) * height;
  return whole + whole / 5;
}

// A polyline or a rectangle as lines, which alone have widths.
std::vector<gxm_shape_t> lines_of(const gxm_shape_t& shape) {
  auto points = shape.points;
  if (shape.type == gx_type::rectangle_2d) {
    const auto a = points[0], b = points[1];
    points = {a, {b.x, a.y}, b, {a.x, b.y}, a};
  }
  std::vector<gxm_shape_t> lines;
  for (std::size_t i = 1; i < points.size(); ++i)
    lines.push_back({.type = gx_type::line_2d,
                     .points = {points[i - 1], points[i]},
                     .color = shape.color,
                     .width = shape.width,
                     .style = shape.style});
  return lines;
}

// A text without its marks, and the letters that have a bar: first, and one after the last.
struct marked_t {
  std::string text{};
  gxi_bars_t bars{};
};

marked_t marked(std::string_view from) {
  marked_t result;
  std::vector<std::pair<char, std::size_t>> open;
  for (std::size_t i = 0; i < from.size(); ++i) {
    const bool opens = i + 1 < from.size() && from[i + 1] == '{' &&
                       std::string_view("~^_").find(from[i]) != std::string_view::npos;
    if (opens) {
      open.emplace_back(from[i++], result.text.size());
    } else if (from[i] == '}' && !open.empty()) {
      if (open.back().first == '~' && result.text.size() > open.back().second)
        result.bars.emplace_back(open.back().second, result.text.size());
      open.pop_back();
    } else {
      result.text += from[i];
    }
  }
  return result;
}

}  // namespace

gx_pointreal_t gxi_kicad_on_sheet(gxi_kicad_point_t p) { return {scaled(p.x), scaled(p.y)}; }
gx_pointreal_t gxi_kicad_in_symbol(gxi_kicad_point_t p) { return {scaled(p.x), -scaled(p.y)}; }
std::int32_t gxi_kicad_length(int length) { return scaled(length); }

std::vector<gxm_shape_t> gxi_kicad_drawn(const gxi_kicad_shape_t& shape, bool in_symbol,
                                         std::uint8_t color) {
  using kind_t = gxi_kicad_shape_t::kind_t;
  constexpr gx_type types[] = {gx_type::polyline_2d, gx_type::rectangle_2d, gx_type::arc3p_2d,
                               gx_type::circle_2d};
  gxm_shape_t drawn{.type = gx_at(types, static_cast<int>(shape.kind)), .color = color};
  drawn.style = shape.dashed ? 1 : 0;
  drawn.filled = shape.fill == gxi_kicad_fill::outline && shape.kind != kind_t::arc;
  for (const auto& point : shape.points)
    drawn.points.push_back(in_symbol ? gxi_kicad_in_symbol(point) : gxi_kicad_on_sheet(point));
  if (shape.kind == kind_t::circle) drawn.radius = std::max(scaled(shape.radius), 1);
  const bool is_straight = shape.kind == kind_t::polyline || shape.kind == kind_t::rectangle;
  if (shape.width <= thin || drawn.filled || !is_straight) return {drawn};
  drawn.width = shape.width <= thick ? 2 : 3;
  return lines_of(drawn);
}

gxi_look_t gxi_kicad_look(const gxi_kicad_text_t& text, bool in_symbol, std::uint8_t color) {
  gxi_look_t look;
  look.at = in_symbol ? gxi_kicad_in_symbol(text.at) : gxi_kicad_on_sheet(text.at);
  look.height = std::max(scaled(std::min(text.size, largest_text) * letter_height), 1);
  look.across = text.across;
  look.up = text.up;
  look.rotate = static_cast<std::uint8_t>(text.rotate);
  look.color = color;
  return look;
}

gxi_look_t gxi_kicad_label_look(const gxi_kicad_label_t& label) {
  auto text = label.text;
  const bool back = text.rotate >= 2;  // to the left, or downwards
  text.rotate %= 2;
  text.across = back ? gxi_align::end : gxi_align::start;
  const bool flagged = label.kind != gxi_kicad_label::local;
  text.up = flagged ? gxi_align::middle : gxi_align::start;
  auto look = gxi_kicad_look(text, false, gxi_kicad_colors.label);
  // The text of a global label is within its flag, that of a hierarchical one after it.
  const std::int32_t away = label.kind == gxi_kicad_label::hierarchical ? look.height * 5 / 2
                            : flagged                                   ? look.height
                                                                        : 0;
  const std::int32_t above = flagged ? 0 : look.height / 4;
  look.at = plus(look.at, gx_turn(gx_pointreal_t{back ? -away : away, -above}, text.rotate, false));
  return look;
}

std::string gxi_kicad_readable(std::string_view text) {
  return gxi_kicad_unescaped(marked(text).text);
}

void gxi_kicad_write(std::string_view text, const gxi_look_t& look, std::vector<gxi_text_t>& texts,
                     std::vector<gxm_shape_t>& shapes) {
  if (text.empty()) return;
  const auto plain = marked(text);
  texts.push_back({gxi_kicad_unescaped(plain.text), look});
  gxi_draw_bars(plain.bars, plain.text, look, shapes);
}

gxm_shape_t gxi_kicad_flag(const gxi_kicad_label_t& label, std::size_t length) {
  const auto look = gxi_kicad_label_look(label);
  const auto half = look.height, tip = look.height;
  const auto end = width_of(length, look.height) + 2 * look.height;
  const bool in = label.shape == "input", out = label.shape == "output";
  const bool both = label.shape == "bidirectional" || label.shape == "tri_state";
  // From the label's place; an input points at it, an output away from it.
  std::vector<gx_pointreal_t> points{{0, 0}};
  const auto near = in || both ? tip : 0;
  points.push_back({near, -half});
  points.push_back({end - (out || both ? tip : 0), -half});
  if (out || both) points.push_back({end, 0});
  points.push_back({end - (out || both ? tip : 0), half});
  points.push_back({near, half});
  points.push_back({0, 0});
  gxm_shape_t flag{.type = gx_type::polyline_2d, .color = gxi_kicad_colors.label};
  const bool back = look.across == gxi_align::end;
  for (const auto& p : points)
    flag.points.push_back(
        plus(gxi_kicad_on_sheet(label.text.at),
             gx_turn(gx_pointreal_t{back ? -p.x : p.x, p.y}, look.rotate, false)));
  return flag;
}
