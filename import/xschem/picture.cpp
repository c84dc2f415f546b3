// Layers, shapes and texts.
#include "import/xschem/picture.h"

#include <algorithm>
#include <cmath>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "import/drawing/colors.h"

namespace {

constexpr double scale = gxm_step / 10.0;
constexpr double line_height = 49;    // of a text of size 1, its units
constexpr double line_step = 59;      // measured in its window
constexpr double letter_height = 25;  // letters here are as wide as those there on the average,
constexpr double tallest = 40;        // unless they would be taller than their line
constexpr double smallest = 0.02, largest = 20;  // sizes of texts that are taken as they are
constexpr double pi = 3.14159265358979323846;

constexpr int text_layer = 3;

std::int32_t length(double v) { return static_cast<std::int32_t>(std::lround(v * scale)); }

gx_pointreal_t on_circle(const gxi_xschem_shape_t& arc, double degrees) {
  const double angle = degrees * pi / 180;
  return gxi_xschem_point({arc.points[0].x + arc.radius * std::cos(angle),
                           arc.points[0].y - arc.radius * std::sin(angle)});
}

// Of polygons and circles; boxes are filled there with a pattern of their layer, unless `full`.
bool is_filled(const gxi_xschem_attributes_t& attributes) {
  const auto fill = attributes.get("fill");
  return fill == "true" || fill == "full";
}

}  // namespace

gx_pointreal_t gxi_xschem_point(gxi_xschem_point_t p) { return {length(p.x), length(p.y)}; }

std::uint8_t gxi_xschem_color(int layer) {
  return layer >= 0 && layer < static_cast<int>(gxi_xschem_colors.size())
             ? gx_at(gxi_xschem_colors, layer)
             : std::uint8_t{gxm_white};
}

bool gxi_xschem_shape(const gxi_xschem_shape_t& shape, gxm_shape_t& drawn) {
  const gxi_xschem_attributes_t attributes(shape.attributes);
  drawn = {};
  drawn.color = gxi_xschem_color(shape.layer);
  drawn.style = attributes.find("dash") != nullptr ? 1 : 0;
  if (attributes.is_set("bus")) drawn.width = 3;
  for (const auto& point : shape.points) drawn.points.push_back(gxi_xschem_point(point));
  switch (shape.kind) {
    case 'L':
      drawn.type = gx_type::line_2d;
      return true;
    case 'B':
      drawn.type = gx_type::rectangle_2d;
      drawn.filled = attributes.get("fill") == "full";
      return shape.layer != gxi_xschem_pin_layer || attributes.find("name") == nullptr;
    case 'P':
      drawn.type = gx_type::polyline_2d;
      drawn.filled = is_filled(attributes);
      return drawn.points.size() > 1;
    case 'A':
      break;
    default:
      return false;
  }
  if (std::fabs(shape.sweep) >= 360) {
    drawn.type = gx_type::circle_2d;
    drawn.radius = std::abs(length(shape.radius));
    drawn.filled = is_filled(attributes);
  } else {
    drawn.type = gx_type::arc3p_2d;
    drawn.points = {on_circle(shape, shape.start), on_circle(shape, shape.start + shape.sweep / 2),
                    on_circle(shape, shape.start + shape.sweep)};
  }
  return true;
}

gxi_look_t gxi_xschem_look(const gxi_xschem_text_t& text) {
  const gxi_xschem_attributes_t attributes(text.attributes);
  const double size = std::clamp(std::fabs(text.height), smallest, largest);
  gxi_look_t look;
  const double letters = std::min(
      std::clamp(std::fabs(text.width), smallest, largest) * letter_height, size * tallest);
  look.height = std::max(length(letters), 1);
  look.line_step = length(size * line_step);
  look.flush = true;
  look.rotate = static_cast<std::uint8_t>((4 - text.rotate) % 4);
  look.across = attributes.is_set("hcenter") ? gxi_align::middle
                : text.flip                  ? gxi_align::end
                                             : gxi_align::start;
  // The place is the upper corner of the line, whose letters are in its middle.
  look.up = gxi_align::end;
  double down = (size * line_height - letters) / 2;
  if (attributes.is_set("vcenter")) {
    look.up = gxi_align::middle;
    down = 0;
  }
  const auto at = gxi_xschem_point(text.at),
             by = gx_turn(gx_pointreal_t{0, length(down)}, look.rotate, false);
  look.at = {at.x + by.x, at.y + by.y};
  const auto* const layer = attributes.find("layer");
  look.color = gxi_xschem_color(
      layer != nullptr && !layer->empty() && layer->size() < 4 &&
              std::all_of(layer->begin(), layer->end(), [](char c) { return c >= '0' && c <= '9'; })
          ? std::stoi(*layer)
          : text_layer);
  return look;
}

std::optional<std::string> gxi_xschem_shown_value(const gxi_xschem_text_t& text,
                                                  const gxi_xschem_value_of_t& value) {
  std::string shown = text.text;
  if (shown.find('@') != std::string::npos) {
    if (shown.find("spice_get_") != std::string::npos) return std::nullopt;
    shown = gxi_xschem_substitute(shown, value);
  }
  if (shown.find_first_not_of(" \n\t") == std::string::npos) return std::nullopt;
  return shown;
}

std::vector<gxi_xschem_shown_t> gxi_xschem_shown(const gxi_xschem_file_t& symbol, bool fixed,
                                                 const gxi_xschem_value_of_t& value) {
  std::vector<gxi_xschem_shown_t> shown;
  for (const auto& text : symbol.texts) {
    const gxi_xschem_attributes_t attributes(text.attributes);
    const auto hide = attributes.get("hide");
    if (hide == "true" || hide == "1" || hide == "instance") continue;
    if (text.text.rfind("tcleval(", 0) == 0) continue;
    const bool varies = text.text.find('@') != std::string::npos;
    if (varies == fixed) continue;
    auto shown_value = gxi_xschem_shown_value(text, value);
    if (!shown_value) continue;
    gxi_xschem_shown_t entry{.value = std::move(*shown_value), .look = gxi_xschem_look(text)};
    const auto name = std::string_view(text.text).substr(1);
    if (text.text.front() == '@' && name.find_first_of("@#: \n\\/") == std::string_view::npos)
      entry.attribute = name;
    shown.push_back(std::move(entry));
  }
  return shown;
}
