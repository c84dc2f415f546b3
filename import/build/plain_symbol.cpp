#include "import/build/plain_symbol.h"

#include <algorithm>

#include "import/drawing/names.h"

namespace {
constexpr std::size_t most_points = gx_object_polyline_rec_t::max_points;
}  // namespace

std::string gxi_text_names_t::next() {
  std::string name;
  do {
    name = "TEXT" + std::to_string(++last_);
  } while (taken_.has(name));
  return name;
}

void gxi_take_shape(std::vector<gxm_shape_t>& shapes, const gxm_shape_t& shape) {
  const auto& points = shape.points;
  if (shape.type != gx_type::polyline_2d || points.size() <= most_points) {
    shapes.push_back(shape);
    return;
  }
  for (std::size_t first = 0; first + 1 < points.size(); first += most_points - 1) {
    gxm_shape_t piece = shape;
    const auto last = std::min(first + most_points, points.size());
    piece.points.assign(points.begin() + static_cast<std::ptrdiff_t>(first),
                        points.begin() + static_cast<std::ptrdiff_t>(last));
    shapes.push_back(std::move(piece));
  }
}

gxm_property_t gxi_property_of_line(std::string name, const gxi_line_t& line,
                                    const gxi_look_t& look) {
  return {.name = std::move(name),
          .value = line.text,
          .at = line.at,
          .height = look.height,
          .color = look.color,
          .vertical = line.rotate == 1};
}

gxi_line_t gxi_whole_line(const std::string& value, const gxi_look_t& look) {
  auto lines = gxi_lines(value, look);
  gxi_line_t line = lines.empty() ? gxi_line_t{.at = look.at} : std::move(lines.front());
  line.text = value;
  return line;
}

gxm_symbol_t gxi_plain_symbol(const gxi_symbol_t& symbol) {
  gxm_symbol_t plain;
  for (const auto& shape : symbol.shapes) gxi_take_shape(plain.shapes, shape);
  gxi_names_t taken;
  const auto take = [&](const gxi_property_t& property) {
    taken.take(property.name);
    if (!property.look)
      return gxm_property_t{.name = property.name, .value = property.value, .at = {}};
    return gxi_property_of_line(property.name, gxi_whole_line(property.value, *property.look),
                                *property.look);
  };
  for (const auto& property : symbol.properties) plain.properties.push_back(take(property));
  for (const auto& property : symbol.defaults) take(property);
  gxi_text_names_t names(std::move(taken));
  for (const auto& text : symbol.texts)
    for (const auto& line : gxi_lines(text.value, text.look))
      plain.properties.push_back(gxi_property_of_line(names.next(), line, text.look));
  for (const auto& pin : symbol.pins) {
    auto& to = plain.pins.emplace_back();
    to.name = pin.name;
    to.type = pin.type;
    to.at = pin.at;
    if (pin.name_look) {
      const auto at = gxi_whole_line(pin.name, *pin.name_look).at;
      to.name_at = gx_pointreal_t{at.x - pin.at.x, at.y - pin.at.y};
    }
    for (const auto& property : pin.properties)
      to.properties.push_back({.name = property.name, .value = property.value, .at = {}});
  }
  return plain;
}
