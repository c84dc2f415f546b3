// Scale, colours, shapes, texts.
#include "import/lepton/picture.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "import/drawing/colors.h"
#include "import/drawing/placement.h"
#include "import/lepton/path.h"

namespace {

constexpr std::int32_t scale = gxm_step / 100;
constexpr double pi = 3.14159265358979323846;

// Of a text of one point, in thousandths of an inch. Its capitals are 13.3 high, its letters 9.6
// wide on the average; letters here are wider, and are kept at that width.
constexpr double letter_height = 8.0;
constexpr double line_step = 21.0;
constexpr double top_margin = 5.9;  // from the upper end of a text to its capitals
constexpr int largest_text = 1000;

std::int32_t length(double v) { return static_cast<std::int32_t>(std::lround(v * scale)); }

gx_pointreal_t on_circle(const gxi_lepton_shape_t& arc, double degrees) {
  const double angle = degrees * pi / 180;
  const auto centre = gxi_lepton_point(arc.points[0]);
  const double radius = static_cast<double>(arc.radius) * scale;
  return {static_cast<std::int32_t>(std::lround(centre.x + radius * std::cos(angle))),
          static_cast<std::int32_t>(std::lround(centre.y - radius * std::sin(angle)))};
}

std::uint8_t line_width(std::int32_t width) {
  return static_cast<std::uint8_t>(width < 20 ? 1 : width < 40 ? 2 : 3);
}

gx_pointreal_t plus(gx_pointreal_t a, gx_pointreal_t b) { return {a.x + b.x, a.y + b.y}; }

// A text without its marks, and the letters that have a bar: first, and one after the last.
struct barred_t {
  std::string text{};
  gxi_bars_t bars{};
};

barred_t barred(std::string_view marked) {
  barred_t result;
  bool in_bar = false;
  std::size_t begun = 0;
  for (std::size_t i = 0; i < marked.size(); ++i) {
    if (marked[i] != '\\' || i + 1 == marked.size()) {
      result.text += marked[i];
    } else if (marked[++i] == '_') {
      if (in_bar && result.text.size() > begun) result.bars.emplace_back(begun, result.text.size());
      begun = result.text.size();
      in_bar = !in_bar;
    } else {
      if (marked[i] != '\\') result.text += '\\';
      result.text += marked[i];
    }
  }
  if (in_bar && result.text.size() > begun) result.bars.emplace_back(begun, result.text.size());
  return result;
}

}  // namespace

gx_pointreal_t gxi_lepton_point(gxi_lepton_point_t p) { return {p.x * scale, -p.y * scale}; }

std::uint8_t gxi_lepton_color(int index) {
  return index >= 0 && index < static_cast<int>(gxi_lepton_colors.size())
             ? gx_at(gxi_lepton_colors, index)
             : std::uint8_t{gxm_white};
}

std::vector<gxm_shape_t> gxi_lepton_shapes(const gxi_lepton_shape_t& shape) {
  gxm_shape_t drawn;
  drawn.color = gxi_lepton_color(shape.color);
  drawn.width = line_width(shape.width);
  drawn.style = shape.dashed ? 1 : 0;
  for (const auto& point : shape.points) drawn.points.push_back(gxi_lepton_point(point));
  switch (shape.kind) {
    case 'U':
      drawn.width = 3;
      [[fallthrough]];
    case 'L':
      drawn.type = gx_type::line_2d;
      return {drawn};
    case 'B':
    case 'G':
      drawn.type = gx_type::rectangle_2d;
      drawn.filled = shape.filled;
      return {drawn};
    case 'H': {
      std::vector<gxm_shape_t> lines;
      drawn.type = gx_type::polyline_2d;
      drawn.filled = shape.filled;
      for (const auto& line : gxi_lepton_lines(shape.path)) {
        drawn.points.clear();
        for (const auto& point : line) drawn.points.push_back(gxi_lepton_point(point));
        lines.push_back(drawn);
      }
      return lines;
    }
    default:
      break;
  }
  if (shape.radius == 0 || shape.sweep == 0) return {};
  if (shape.kind == 'V' || std::abs(shape.sweep) >= 360) {
    drawn.type = gx_type::circle_2d;
    drawn.radius = std::abs(shape.radius) * scale;
    drawn.filled = shape.filled;
  } else {
    drawn.type = gx_type::arc3p_2d;
    drawn.points = {on_circle(shape, shape.start),
                    on_circle(shape, shape.start + shape.sweep / 2.0),
                    on_circle(shape, shape.start + shape.sweep)};
  }
  return {drawn};
}

gxm_shape_t gxi_lepton_pin_line(const gxi_lepton_pin_t& pin) {
  return {.type = gx_type::line_2d,
          .points = {gxi_lepton_point(pin.tip), gxi_lepton_point(pin.root)},
          .color = gxi_lepton_color(pin.color),
          .width = static_cast<std::uint8_t>(pin.bus ? 3 : 1)};
}

std::string gxi_lepton_seen(const gxi_lepton_text_t& text) {
  if (!text.visible) return {};
  const auto name = text.name();
  if (name.empty() || text.show == gxi_lepton_text_t::show_t::both) return text.text;
  return std::string(text.show == gxi_lepton_text_t::show_t::name ? name : text.value());
}

std::string gxi_lepton_plain(std::string_view text) {
  auto plain = barred(text);
  for (auto bar = plain.bars.rbegin(); bar != plain.bars.rend(); ++bar)
    plain.text.insert(bar->first, 1, '~');
  return std::move(plain.text);
}

std::string gxi_lepton_name(std::string_view text) {
  auto plain = barred(text);
  for (auto bar = plain.bars.rbegin(); bar != plain.bars.rend(); ++bar) {
    plain.text.insert(bar->second, 1, '}');
    plain.text.insert(bar->first, "~{");
  }
  return std::move(plain.text);
}

gxi_look_t gxi_lepton_look(const gxi_lepton_text_t& text) {
  const double size = std::min(text.size, largest_text);
  gxi_look_t look;
  look.height = std::max(length(size * letter_height), 1);
  look.line_step = length(size * line_step);
  look.rotate = static_cast<std::uint8_t>(text.rotate);
  look.flush = true;
  look.across = static_cast<gxi_align>(text.alignment / 3);
  look.up = static_cast<gxi_align>(text.alignment % 3);
  look.color = gxi_lepton_color(text.color);
  look.at = gxi_lepton_point(text.at);
  if (look.up == gxi_align::end)
    look.at =
        plus(look.at, gx_turn(gx_pointreal_t{0, length(size * top_margin)}, text.rotate, false));
  return look;
}

void gxi_lepton_draw(const gxi_lepton_text_t& text, std::string_view seen,
                     std::vector<gxi_text_t>& texts, std::vector<gxm_shape_t>& shapes) {
  if (seen.empty()) return;
  const auto look = gxi_lepton_look(text);
  auto plain = barred(seen);
  gxi_draw_bars(plain.bars, plain.text, look, shapes);
  texts.push_back({std::move(plain.text), look});
}
