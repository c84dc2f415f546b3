#include "import/kicad/signs.h"

#include <algorithm>
#include <set>
#include <span>
#include <utility>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/names.h"
#include "import/drawing/placement.h"
#include "import/kicad/picture.h"

namespace {

constexpr int bubble = 6'350;  // radius of what inverts a pin, and the unit of other marks
constexpr int above_line = 2'540;

// What the graphic style of a pin adds at the body: a line through points out of the body along the
// pin, and to its upper or left side.
struct mark_t {
  std::string_view style;
  std::size_t count;
  gxi_kicad_point_t points[3];
};
constexpr mark_t marks[] = {
    {"clock", 3, {{0, 1}, {-2, 0}, {0, -1}}},
    {"inverted_clock", 3, {{0, 1}, {-2, 0}, {0, -1}}},
    {"clock_low", 3, {{0, 1}, {-2, 0}, {0, -1}}},
    {"clock_low", 3, {{0, 0}, {2, 2}, {2, 0}}},
    {"input_low", 3, {{0, 0}, {2, 2}, {2, 0}}},
    {"output_low", 2, {{0, 2}, {2, 0}}},
    {"edge_clock_high", 3, {{0, 1}, {2, 0}, {0, -1}}},
    {"non_logic", 2, {{-1, -1}, {1, 1}}},
    {"non_logic", 2, {{-1, 1}, {1, -1}}},
};

gxi_kicad_point_t along(const gxi_kicad_pin_t& pin, int length) {
  constexpr gxi_kicad_point_t ways[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  const auto way = gx_at(ways, pin.rotate);
  return {pin.at.x + way.x * length, pin.at.y + way.y * length};
}

// Above the line of a pin, or on the left of one that goes up or down.
gxi_kicad_point_t above(const gxi_kicad_pin_t& pin, int length, int by) {
  const auto on = along(pin, length);
  return pin.rotate % 2 == 0 ? gxi_kicad_point_t{on.x, on.y + by}
                             : gxi_kicad_point_t{on.x - by, on.y};
}

bool is_of(const gxi_kicad_unit_t& one, int unit, int style) {
  return (one.unit == 0 || one.unit == unit) && (one.style == 0 || one.style == style);
}

void draw_pin(const gxi_kicad_symbol_t& symbol, const gxi_kicad_pin_t& pin, gxi_symbol_t& sign) {
  if (pin.hidden) return;
  const auto color = gxi_kicad_colors.pin;
  const bool inverted = pin.shape == "inverted" || pin.shape == "inverted_clock";
  const bool is_short = inverted || pin.shape == "edge_clock_high";
  const int line = pin.length - (is_short ? 2 * bubble : 0);
  const auto point = [](gxi_kicad_point_t p) { return gxi_kicad_in_symbol(p); };
  if (line > 0)
    sign.shapes.push_back({.type = gx_type::line_2d,
                           .points = {point(pin.at), point(along(pin, line))},
                           .color = color});
  if (inverted)
    sign.shapes.push_back({.type = gx_type::circle_2d,
                           .points = {point(along(pin, pin.length - bubble))},
                           .radius = gxi_kicad_length(bubble),
                           .color = color});
  for (const auto& [style, count, points] : marks) {
    if (style != pin.shape) continue;
    gxm_shape_t mark{.type = gx_type::polyline_2d, .color = color};
    for (const auto& [out, up] : std::span(points, count))
      mark.points.push_back(point(above(pin, pin.length - out * bubble, up * bubble)));
    sign.shapes.push_back(std::move(mark));
  }
  // Read to the right or upwards, whichever way the pin goes.
  gxi_kicad_text_t text{.rotate = pin.rotate % 2};
  const bool forward = pin.rotate < 2;
  if (pin.name_size > 0 && !pin.name.empty()) {
    text.size = pin.name_size;
    if (symbol.name_offset > 0) {
      text.at = along(pin, pin.length + symbol.name_offset);
      text.across = forward ? gxi_align::start : gxi_align::end;
    } else {
      text.at = above(pin, pin.length / 2, above_line);
      text.up = gxi_align::start;
    }
    gxi_kicad_write(pin.name, gxi_kicad_look(text, true, color), sign.texts, sign.shapes);
  }
  if (pin.number_size > 0 && !pin.number.empty()) {
    text.size = pin.number_size;
    text.across = gxi_align::middle;
    const bool below = symbol.name_offset <= 0 && pin.name_size > 0 && !pin.name.empty();
    text.up = below ? gxi_align::end : gxi_align::start;
    text.at = above(pin, pin.length / 2, below ? -above_line : above_line);
    gxi_kicad_write(pin.number, gxi_kicad_look(text, true, color), sign.texts, sign.shapes);
  }
}

gxi_symbol_t drawn(const gxi_kicad_symbol_t& symbol, int unit, int style) {
  // "Library:Name" is the part's name to people.
  const auto colon = symbol.name.find(':');
  gxi_symbol_t sign{.name =
                        colon == std::string::npos ? symbol.name : symbol.name.substr(colon + 1)};
  for (const auto& one : symbol.units) {
    if (!is_of(one, unit, style)) continue;
    for (const auto& shape : one.shapes)
      for (auto& line : gxi_kicad_drawn(shape, true, gxi_kicad_colors.body))
        sign.shapes.push_back(std::move(line));
    for (const auto& text : one.texts)
      if (!text.hidden)
        gxi_kicad_write(text.text, gxi_kicad_look(text, true, gxi_kicad_colors.body), sign.texts,
                        sign.shapes);
    for (const auto& pin : one.pins) draw_pin(symbol, pin, sign);
  }
  return sign;
}

using functions_t = std::map<std::string, std::string, std::less<>>;

void choose_functions(gxi_kicad_symbol_t& symbol, const functions_t& functions) {
  for (auto& unit : symbol.units)
    for (auto& pin : unit.pins) {
      const auto chosen = functions.find(pin.number);
      if (chosen == functions.end()) continue;
      const auto type = pin.alternates.find(chosen->second);
      if (type == pin.alternates.end()) continue;
      pin.name = type->first;
      pin.type = type->second;
    }
}

}  // namespace

std::vector<const gxi_kicad_pin_t*> gxi_kicad_pins(const gxi_kicad_symbol_t& symbol, int unit,
                                                   int style) {
  std::vector<const gxi_kicad_pin_t*> pins;
  for (const bool shared : {true, false})
    for (const auto& one : symbol.units)
      if (is_of(one, unit, style) && (one.unit == 0) == shared)
        for (const auto& pin : one.pins) pins.push_back(&pin);
  return pins;
}

std::vector<std::size_t> gxi_kicad_kept_pins(const std::vector<const gxi_kicad_pin_t*>& pins) {
  std::vector<std::size_t> kept;
  std::set<std::pair<std::string_view, gxi_kicad_point_t>> seen;
  for (std::size_t i = 0; i < pins.size(); ++i)
    if (seen.emplace(pins[i]->number, pins[i]->at).second) kept.push_back(i);
  return kept;
}

gxi_symbol_t gxi_kicad_part_sign(const gxi_kicad_symbol_t& symbol, int unit, int style,
                                 const std::map<std::string, std::string, std::less<>>& functions) {
  if (!functions.empty()) {
    auto chosen = symbol;
    choose_functions(chosen, functions);
    return gxi_kicad_part_sign(chosen, unit, style);
  }
  auto sign = drawn(symbol, unit, style);
  const auto pins = gxi_kicad_pins(symbol, unit, style);
  for (const auto i : gxi_kicad_kept_pins(pins)) {
    const auto& pin = *pins[i];
    gxi_pin_t made{.name = pin.number.empty() ? pin.name : pin.number,
                   .type = std::string(gxi_kicad_pin_type(pin.type)),
                   .at = gxi_kicad_in_symbol(pin.at)};
    made.properties.push_back({std::string(gxi_electrical), pin.type, {}});
    if (!pin.name.empty())
      made.properties.push_back({"FUNCTION", gxi_kicad_readable(pin.name), {}});
    sign.pins.push_back(std::move(made));
  }
  return sign;
}

gxi_symbol_t gxi_kicad_power_sign(const gxi_kicad_symbol_t& symbol, int unit, int style) {
  auto sign = drawn(symbol, unit, style);
  const auto pins = gxi_kicad_pins(symbol, unit, style);
  if (!pins.empty())
    sign.pins.push_back({.name = "P", .at = gxi_kicad_in_symbol(pins.front()->at)});
  return sign;
}

gxi_symbol_t gxi_kicad_missing_sign(const std::string& name) {
  gxi_symbol_t sign{.name = "missing"};
  gxi_draw_missing(name, sign);
  return sign;
}

gxi_kicad_block_sign_t gxi_kicad_block_sign(const gxi_kicad_block_t& block,
                                            const std::vector<std::string>& pins,
                                            const gxi_kicad_aliases_t& aliases) {
  gxi_kicad_block_sign_t made;
  auto& sign = made.symbol;
  const auto corner = gxi_kicad_on_sheet(block.size);
  sign.shapes.push_back({.type = gx_type::rectangle_2d,
                         .points = {{0, 0}, corner},
                         .color = gxi_kicad_colors.block,
                         .width = 2});
  gxi_names_t taken;
  std::set<std::string_view> seen;
  for (std::size_t i = 0; i < pins.size(); ++i) {
    auto label = block.pins[i];
    label.text.at = {label.text.at.x - block.at.x, label.text.at.y - block.at.y};
    // The side that the pin is on; its name goes inwards.
    label.text.rotate = (label.text.rotate + 2) % 4;
    auto look = gxi_kicad_label_look(label);
    look.color = gxi_kicad_colors.block;
    // What goes in points inwards.
    auto turned = label;
    if (label.shape == "input") turned.shape = "output";
    if (label.shape == "output") turned.shape = "input";
    auto flag = gxi_kicad_flag(turned, 0);
    flag.color = gxi_kicad_colors.block;
    sign.shapes.push_back(std::move(flag));
    gxi_kicad_write(label.text.text, look, sign.texts, sign.shapes);
    auto& names = made.names.emplace_back();
    if (!seen.insert(pins[i]).second) continue;
    auto members = gxi_kicad_bus(pins[i], aliases).members;
    if (members.empty()) members.push_back(pins[i]);
    for (const auto& member : members) {
      names.push_back(taken.take(member));
      sign.pins.push_back({.name = names.back(),
                           .type = std::string(gxi_kicad_pin_type(label.shape)),
                           .at = gxi_kicad_on_sheet(label.text.at)});
    }
  }
  return made;
}

gxi_symbol_t gxi_kicad_port_sign(const gxi_kicad_label_t& label) {
  gxi_symbol_t sign{.name = "port_" + label.shape};
  auto at_origin = label;
  at_origin.text.at = {};
  at_origin.text.rotate = 0;
  sign.shapes.push_back(gxi_kicad_flag(at_origin, 0));
  sign.pins.push_back({.name = "P", .type = std::string(gxi_kicad_pin_type(label.shape))});
  const auto type = gxi_kicad_pin_type(label.shape);
  sign.properties.push_back({"CLASS",
                             type == "IN"    ? "PORTIN"
                             : type == "OUT" ? "PORTOUT"
                                             : "PORTIO",
                             {}});
  return sign;
}

std::string gxi_kicad_sign_key(const gxi_symbol_t& sign) {
  std::string key = sign.name;
  const auto number = [&](auto value) { key += ' ' + std::to_string(static_cast<int>(value)); };
  const auto text = [&](const std::string& value) {
    number(value.size());
    key += ':' + value;
  };
  const auto look = [&](const gxi_look_t& one) {
    for (const auto value : {one.at.x, one.at.y, one.height}) number(value);
    number(one.across);
    number(one.up);
    number(one.rotate);
  };
  for (const auto& shape : sign.shapes) {
    number(shape.type);
    for (const auto& point : shape.points) {
      number(point.x);
      number(point.y);
    }
    for (const int value : {shape.radius, int{shape.color}, int{shape.width}, int{shape.style}})
      number(value);
    number(shape.filled);
  }
  for (const auto& one : sign.texts) {
    text(one.value);
    look(one.look);
  }
  const auto properties = [&](const std::vector<gxi_property_t>& list) {
    for (const auto& property : list) {
      text(property.name);
      text(property.value);
    }
  };
  properties(sign.properties);
  for (const auto& pin : sign.pins) {
    text(pin.name);
    text(pin.type);
    number(pin.at.x);
    number(pin.at.y);
    properties(pin.properties);
  }
  return key;
}

std::string_view gxi_kicad_pin_type(std::string_view type) {
  constexpr std::string_view in[] = {"input", "power_in"};
  constexpr std::string_view out[] = {"output", "power_out", "tri_state", "open_collector",
                                      "open_emitter"};
  const auto among = [&](const auto& list) {
    return std::find(std::begin(list), std::end(list), type) != std::end(list);
  };
  return among(in) ? "IN" : among(out) ? "OUT" : "IO";
}

std::string gxi_kicad_class(std::string_view reference) {
  std::string letters;
  for (const char c : reference) {
    const char big = gx_upper_case(c);
    if (big < 'A' || big > 'Z') break;
    letters += big;
  }
  if (letters.empty()) return "DEVICE";
  return gxi_class_has_meaning(letters) ? letters + "_" : letters;
}
