// Pins, texts, attributes.
#include "import/xschem/signs.h"

#include <algorithm>
#include <iterator>

#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/placement.h"

namespace {

// Attributes that say something to xschem alone, or that become something else here.
bool is_told_otherwise(std::string_view name) {
  constexpr std::string_view names[] = {
      "name",          "embed",        "lab",    "schematic",  "spice_ignore", "savecurrent",
      "spice_sym_def", "device_model", "format", "hide_texts", "attach"};
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

// Whether a value is put together of others, or by Tcl.
bool is_composed(std::string_view value) {
  const auto has = [&](std::string_view part) { return value.find(part) != value.npos; };
  return has("@") || has("expr(") || has("expr_eng") || has("tcleval(");
}

bool has_attribute(const gxi_xschem_placed_t& placed, std::string_view name) {
  const auto is = [&](const auto& attribute) { return gx_iden(attribute.first, name); };
  return std::ranges::any_of(placed.attributes.all(), is) ||
         std::ranges::any_of(placed.symbol->defaults.all(), is);
}

// What all instances of the symbol show.
void draw_fixed(const gxi_xschem_file_t& records, gxi_symbol_t& sign) {
  gxm_shape_t drawn;
  for (const auto& shape : records.shapes)
    if (gxi_xschem_shape(shape, drawn)) sign.shapes.push_back(drawn);
  for (auto& shown : gxi_xschem_shown(records, true, {}))
    sign.texts.push_back({std::move(shown.value), shown.look});
}

void take_nodes(const gxi_xschem_placed_t& placed, std::size_t line, gxi_symbol_t& sign) {
  const auto& from = *placed.symbol;
  gxi_row_below_t below(sign);
  for (const auto& pin : from.pins) below.keep_below(gxi_xschem_point(pin.at));
  for (const auto& node : placed.devices[line].nodes) {
    if (node.pin < 0) {
      sign.pins.push_back({.name = node.name, .at = below.next()});
      continue;
    }
    const auto& pin = gx_at(from.pins, node.pin);
    for (const auto& bit : gxi_xschem_pin_names(placed, node))
      sign.pins.push_back({.name = bit, .type = pin.type, .at = gxi_xschem_point(pin.at)});
  }
}

}  // namespace

gxi_symbol_t gxi_xschem_sign(const gxi_xschem_placed_t& placed, std::size_t line) {
  const auto& from = *placed.symbol;
  gxi_symbol_t sign{.name = from.name, .source = {from.file, 0}};
  if (line == 0) draw_fixed(from.records, sign);
  if (placed.role == gxi_xschem_role_t::device) {
    take_nodes(placed, line, sign);
    for (const auto& [name, value] : from.defaults.all())
      if (!is_told_otherwise(name)) sign.defaults.push_back({gxi_property_name(name), value, {}});
    return sign;
  }
  if (from.pins.empty()) return sign;
  const auto& pin = from.pins.front();
  sign.pins.push_back({.name = "P", .type = pin.type, .at = gxi_xschem_point(pin.at)});
  if (placed.role == gxi_xschem_role_t::port)
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

std::vector<gxi_property_t> gxi_xschem_dress(const gxi_xschem_placed_t& placed, std::size_t line,
                                             bool is_leaf,
                                             const std::vector<gxi_xschem_shown_t>& shown,
                                             gxi_instance_t& instance, gxi_sheet_t& sheet) {
  const auto& device = placed.devices[line];
  for (const auto& [name, value] : placed.attributes.all())
    if (!is_told_otherwise(name))
      instance.properties.push_back(
          {gxi_property_name(name),
           is_composed(value) ? gxi_xschem_whole_value(placed, name) : value,
           {}});
  for (const auto& [name, value] : placed.symbol->defaults.all())
    if (!is_told_otherwise(name) && is_composed(value) && placed.attributes.find(name) == nullptr)
      instance.properties.push_back(
          {gxi_property_name(name), gxi_xschem_whole_value(placed, name), {}});
  if (is_leaf && !device.model.empty())
    instance.properties.push_back({std::string(gxi_spice_model), device.model, {}});
  for (const auto& [name, value] : device.parameters)
    if (!has_attribute(placed, name))
      instance.properties.push_back({gxi_property_name(name), value, {}});
  auto seen = instance.properties;
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
      gxi_show(text.value, look, seen);
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
