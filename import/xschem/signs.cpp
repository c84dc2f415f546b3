// Pins, texts, attributes.
#include "import/xschem/signs.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "gx/text/at.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/placement.h"

namespace {

// Attributes that say something to xschem alone, or that become something else here.
bool is_told_otherwise(std::string_view name) {
  constexpr std::string_view names[] = {"name",      "embed",        "lab",
                                        "schematic", "spice_ignore", "savecurrent"};
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// What all instances of the symbol show.
void draw_fixed(const gxi_xschem_file_t& records, gxi_symbol_t& sign) {
  gxm_shape_t drawn;
  for (const auto& shape : records.shapes)
    if (gxi_xschem_shape(shape, drawn)) sign.shapes.push_back(drawn);
  for (auto& shown : gxi_xschem_shown(records, true, {}))
    sign.texts.push_back({std::move(shown.value), shown.look});
}

void take_nodes(const gxi_xschem_symbol_t& from, gxi_symbol_t& sign) {
  gxi_row_below_t below(sign);
  for (const auto& pin : from.pins) below.keep_below(gxi_xschem_point(pin.at));
  for (const auto& node : from.nodes) {
    if (node.pin < 0) {
      sign.pins.push_back({.name = node.name, .at = below.next()});
      continue;
    }
    const auto& pin = gx_at(from.pins, node.pin);
    for (const auto& bit : pin.bits)
      sign.pins.push_back({.name = bit, .type = pin.type, .at = gxi_xschem_point(pin.at)});
  }
}

// "#2:name": an attribute of a pin.
std::string value_of_pin(const gxi_xschem_symbol_t& symbol, std::string_view name) {
  const auto colon = name.find(':');
  if (colon == std::string_view::npos) return {};
  const auto pin = gx_whole_number<std::size_t>(name.substr(1, colon - 1));
  if (!pin || *pin >= symbol.pins.size()) return {};
  return std::string(symbol.pins[*pin].attributes.get(name.substr(colon + 1)));
}

}  // namespace

gxi_symbol_t gxi_xschem_sign(const gxi_xschem_symbol_t& from) {
  gxi_symbol_t sign{.name = from.name, .source = {from.file, 0}};
  draw_fixed(from.records, sign);
  if (from.role == gxi_xschem_role_t::device) {
    take_nodes(from, sign);
    for (const auto& [name, value] : from.defaults.all())
      if (!is_told_otherwise(name)) sign.defaults.push_back({gxi_property_name(name), value, {}});
    return sign;
  }
  if (from.pins.empty()) return sign;
  const auto& pin = from.pins.front();
  sign.pins.push_back({.name = "P", .type = pin.type, .at = gxi_xschem_point(pin.at)});
  if (from.role == gxi_xschem_role_t::port)
    sign.properties.push_back({"CLASS", gxi_xschem_port_class(from), {}});
  return sign;
}

std::string gxi_xschem_class(const gxi_xschem_symbol_t& symbol) {
  const auto& type = symbol.type;
  if (type.empty()) return "device";
  return gxi_class_has_meaning(type) ? "device_" + type : type;
}

std::string gxi_xschem_port_class(const gxi_xschem_symbol_t& symbol) {
  return symbol.type == "ipin" ? "PORTIN" : symbol.type == "opin" ? "PORTOUT" : "PORTIO";
}

std::string gxi_xschem_value(const gxi_xschem_placed_t& placed, std::string_view name,
                             std::string_view sheet) {
  const std::filesystem::path file(sheet);
  if (name == "symname") return placed.symbol->name;
  if (name == "prop_ptr") return placed.component->attributes;
  if (name == "schname") return file.stem().string();
  if (name == "schname_ext") return file.filename().string();
  if (name.substr(0, 1) == "#") return value_of_pin(*placed.symbol, name);
  return std::string(placed.value(name));
}

gxi_instance_t gxi_xschem_instance(const gxi_xschem_component_t& component, std::string_view file) {
  gxi_instance_t instance;
  instance.source = {file, component.line};
  instance.at = gxi_xschem_point(component.at);
  instance.rotate = static_cast<std::uint8_t>((4 - component.rotate) % 4);
  instance.mirror = component.flip;
  return instance;
}

std::vector<gxi_property_t> gxi_xschem_dress(const gxi_xschem_placed_t& placed,
                                             const std::vector<gxi_xschem_shown_t>& shown,
                                             gxi_instance_t& instance, gxi_sheet_t& sheet) {
  for (const auto& [name, value] : placed.attributes.all())
    if (!is_told_otherwise(name))
      instance.properties.push_back({gxi_property_name(name), value, {}});
  auto seen = instance.properties;
  int composed = 0;
  for (const auto& text : shown) {
    const auto look = gxi_on_sheet(instance, text.look);
    if (text.attribute == "name") {
      if (placed.names.size() > 1)
        sheet.texts.push_back({text.value, look});
      else
        instance.name_look = look;
      continue;
    }
    // An attribute is shown once; a second time, or put together, it is a text.
    const auto name = gxi_property_name(text.attribute);
    const auto own = std::find_if(seen.begin(), seen.end(),
                                  [&](const auto& property) { return property.name == name; });
    if (own != seen.end() && !own->look)
      own->look = look;
    else if (own == seen.end() && !text.attribute.empty() && !is_told_otherwise(text.attribute) &&
             !placed.attributes.find(text.attribute) &&
             placed.symbol->defaults.find(text.attribute))
      seen.push_back({name, text.value, look});
    else
      seen.push_back({"SHOWN" + std::to_string(++composed), text.value, look});
  }
  return seen;
}

void gxi_xschem_draw(const gxi_xschem_placed_t& placed,
                     const std::vector<gxi_xschem_shown_t>& shown, const gxi_instance_t& instance,
                     gxi_sheet_t& sheet) {
  gxi_symbol_t sign;
  draw_fixed(placed.symbol->records, sign);
  if (placed.symbol->missing) gxi_draw_missing(placed.component->symbol, sign);
  gxi_draw_apart(sign, instance, sheet);
  for (const auto& text : shown)
    sheet.texts.push_back({text.value, gxi_on_sheet(instance, text.look)});
}
