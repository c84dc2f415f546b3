#include "import/kicad/shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr int pieces_of_curve = 16, pieces_of_corner = 4;

void take_stroke(const gxi_kicad_list_t& item, gxi_kicad_shape_t& shape) {
  const auto stroke = item.child("stroke");
  if (const auto width = stroke.child("width")) shape.width = width.length(1);
  const auto style = stroke.child("type").word(1);
  shape.dashed = style.starts_with("da") || style.starts_with("do");  // dash, dot, dash_dot ...
  const auto fill = item.child("fill").child("type").word(1);
  shape.fill = fill == "outline"                         ? gxi_kicad_fill::outline
               : fill == "background" || fill == "color" ? gxi_kicad_fill::background
                                                         : gxi_kicad_fill::none;
}

std::vector<gxi_kicad_point_t> points_of(const gxi_kicad_list_t& item) {
  std::vector<gxi_kicad_point_t> points;
  for (const auto& point : item.child("pts").children())
    if (point.keyword() == "xy") points.push_back(gxi_kicad_point(point));
  return points;
}

// A cubic curve in straight pieces.
std::vector<gxi_kicad_point_t> along_curve(const std::vector<gxi_kicad_point_t>& control) {
  if (control.size() != 4) return control;
  std::vector<gxi_kicad_point_t> points;
  for (int i = 0; i <= pieces_of_curve; ++i) {
    const double t = static_cast<double>(i) / pieces_of_curve, s = 1 - t;
    const auto at = [&](auto part) {
      return static_cast<int>(
          std::lround(s * s * s * part(control[0]) + 3 * s * s * t * part(control[1]) +
                      3 * s * t * t * part(control[2]) + t * t * t * part(control[3])));
    };
    points.push_back(
        {at([](const auto& p) { return p.x; }), at([](const auto& p) { return p.y; })});
  }
  return points;
}

// A rectangle with round corners.
std::vector<gxi_kicad_point_t> rounded(gxi_kicad_point_t a, gxi_kicad_point_t b, int radius) {
  const auto [left, right] = std::minmax({a.x, b.x});
  const auto [low, high] = std::minmax({a.y, b.y});
  const int r = std::min({radius, (right - left) / 2, (high - low) / 2});
  const gxi_kicad_point_t centres[] = {
      {right - r, high - r}, {left + r, high - r}, {left + r, low + r}, {right - r, low + r}};
  std::vector<gxi_kicad_point_t> points;
  double angle = 0;
  for (const auto& centre : centres) {
    for (int i = 0; i <= pieces_of_corner; ++i) {
      const double now = angle + std::numbers::pi / 2 * i / pieces_of_corner;
      points.push_back({centre.x + static_cast<int>(std::lround(r * std::cos(now))),
                        centre.y + static_cast<int>(std::lround(r * std::sin(now)))});
    }
    angle += std::numbers::pi / 2;
  }
  points.push_back(points.front());
  return points;
}

int letter_width(int size) {
  return std::max(size * 9 / 10, 1);
}  // of a letter, as it is drawn here

// Broken at blanks, where a line would have more letters.
std::string in_lines(std::string_view text, int letters) {
  std::string result;
  std::size_t begun = 0, blank = std::string::npos;
  for (const char c : text) {
    if (c == ' ') blank = result.size();
    result += c;
    if (c == '\n') {
      begun = result.size();
      blank = std::string::npos;
    } else if (static_cast<int>(result.size() - begun) > letters && blank != std::string::npos) {
      result[blank] = '\n';
      begun = std::exchange(blank, std::string::npos) + 1;
    }
  }
  return result;
}

}  // namespace

gxi_kicad_point_t gxi_kicad_point(const gxi_kicad_list_t& at) {
  return at ? gxi_kicad_point_t{at.length(1), at.length(2)} : gxi_kicad_point_t{};
}

int gxi_kicad_quarters(const gxi_kicad_list_t& at) {
  if (!at || at.word(3).empty()) return 0;
  const int turns = static_cast<int>(std::lround(at.number(3) / 90));
  return (turns % 4 + 4) % 4;
}

gxi_kicad_text_t gxi_kicad_text(const gxi_kicad_list_t& item, std::string_view text) {
  gxi_kicad_text_t result{.line = item.line(), .text = std::string(text)};
  result.at = gxi_kicad_point(item.child("at"));
  result.rotate = gxi_kicad_quarters(item.child("at"));
  const auto effects = item.child("effects");
  if (const auto size = effects.child("font").child("size")) result.size = std::abs(size.length(1));
  result.hidden = effects.flag("hide") || item.flag("hide");
  const auto justify = effects.child("justify");
  if (justify.has_word("left")) result.across = gxi_align::start;
  if (justify.has_word("right")) result.across = gxi_align::end;
  if (justify.has_word("bottom")) result.up = gxi_align::start;
  if (justify.has_word("top")) result.up = gxi_align::end;
  return result;
}

gxi_kicad_text_t gxi_kicad_boxed_text(const gxi_kicad_list_t& item, bool in_symbol) {
  auto text = gxi_kicad_text(item, item.word(1));
  text.rotate %= 2;
  const auto size = gxi_kicad_point(item.child("size"));
  const int down = in_symbol ? -1 : 1, up_or_down = down * text.at.y;
  const auto [left, right] = std::minmax({text.at.x, text.at.x + size.x});
  const auto [top, bottom] = std::minmax({up_or_down, up_or_down + down * size.y});
  // Older files name no margins.
  const auto margins = item.child("margins");
  const auto margin = [&](int i) {
    return margins ? margins.length(i)
                   : text.size * 3 / 4 + item.child("stroke").child("width").length(1) / 2;
  };
  const gxi_kicad_point_t from{left + margin(1), top + margin(2)};
  const gxi_kicad_point_t to{right - margin(3), bottom - margin(4)};
  const auto between = [](gxi_align align, int start, int end) {
    return align == gxi_align::start ? start : align == gxi_align::end ? end : (start + end) / 2;
  };
  const bool lies = text.rotate == 0;
  // A line begins at the left or at the bottom; its upper side is at the top or on the left.
  text.at =
      lies ? gxi_kicad_point_t{between(text.across, from.x, to.x), between(text.up, to.y, from.y)}
           : gxi_kicad_point_t{between(text.up, to.x, from.x), between(text.across, to.y, from.y)};
  text.at.y *= down;
  text.text = in_lines(text.text, (lies ? to.x - from.x : to.y - from.y) / letter_width(text.size));
  return text;
}

gxi_kicad_field_t gxi_kicad_field(const gxi_kicad_list_t& property) {
  // "private" may come before the name.
  const int first = property.word(1) == "private" && !property.word(3).empty() ? 2 : 1;
  gxi_kicad_field_t field{std::string(property.word(first)),
                          gxi_kicad_text(property, property.word(first + 1))};
  return field;
}

bool gxi_kicad_shape(const gxi_kicad_list_t& item, std::vector<gxi_kicad_shape_t>& shapes) {
  gxi_kicad_shape_t shape;
  const auto keyword = item.keyword();
  if (keyword == "polyline") {
    shape.points = points_of(item);
  } else if (keyword == "bezier") {
    shape.points = along_curve(points_of(item));
  } else if (keyword == "rectangle") {
    shape.kind = gxi_kicad_shape_t::kind_t::rectangle;
    shape.points = {gxi_kicad_point(item.child("start")), gxi_kicad_point(item.child("end"))};
    if (const int radius = item.child("radius").length(1); radius > 0) {
      shape.kind = gxi_kicad_shape_t::kind_t::polyline;
      shape.points = rounded(shape.points[0], shape.points[1], radius);
    }
  } else if (keyword == "text_box" || keyword == "table_cell") {
    shape.kind = gxi_kicad_shape_t::kind_t::rectangle;
    const auto at = gxi_kicad_point(item.child("at")), size = gxi_kicad_point(item.child("size"));
    shape.points = {at, {at.x + size.x, at.y + size.y}};
  } else if (keyword == "arc") {
    shape.kind = gxi_kicad_shape_t::kind_t::arc;
    for (const auto* const end : {"start", "mid", "end"})
      shape.points.push_back(gxi_kicad_point(item.child(end)));
  } else if (keyword == "circle") {
    shape.kind = gxi_kicad_shape_t::kind_t::circle;
    shape.points = {gxi_kicad_point(item.child("center"))};
    shape.radius = item.child("radius").length(1);
  } else {
    return false;
  }
  take_stroke(item, shape);
  if (shape.points.size() > 1 || shape.kind == gxi_kicad_shape_t::kind_t::circle)
    shapes.push_back(std::move(shape));
  return true;
}
