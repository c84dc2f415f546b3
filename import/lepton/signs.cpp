// Pins, texts, attributes.
#include "import/lepton/signs.h"

#include <algorithm>
#include <array>

#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/placement.h"
#include "import/lepton/picture.h"

namespace {

// Attributes that become something else here.
constexpr std::array<std::string_view, 4> told_otherwise{"refdes", "net", "graphical", "slotdef"};
// Those about the symbol in its library: they are not the instances'.
constexpr std::array<std::string_view, 10> of_library{
    "author",   "comment", "description", "dist-license", "documentation",
    "numslots", "pins",    "symversion",  "symbol",       "use-license"};
constexpr std::array<std::string_view, 3> of_pin_itself{"pinnumber", "pinseq", "pintype"};

template <typename List>
bool is_among(const List& list, std::string_view name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

std::string property_value(std::string_view value) {
  return value.find("\\_") == std::string_view::npos ? std::string(value) : gxi_lepton_plain(value);
}

std::string_view pin_type(std::string_view type) {
  constexpr std::array<std::string_view, 2> in{"in", "clk"};
  constexpr std::array<std::string_view, 5> out{"out", "oc", "oe", "tp", "tri"};
  return is_among(in, type) ? "IN" : is_among(out, type) ? "OUT" : "IO";
}

void draw_pins(const gxi_lepton_placed_t& placed, gxi_symbol_t& sign) {
  for (const auto& pin : placed.symbol->records->pins) {
    if (!(pin.tip == pin.root)) sign.shapes.push_back(gxi_lepton_pin_line(pin));
    const auto found = std::find(placed.pins.begin(), placed.pins.end(), &pin);
    for (auto text : pin.attributes) {
      // The number is that of the slot.
      if (text.name() == "pinnumber" && found != placed.pins.end())
        text.text = "pinnumber=" + gx_at(placed.numbers, found - placed.pins.begin());
      gxi_lepton_draw(text, gxi_lepton_seen(text), sign.texts, sign.shapes);
    }
  }
}

// The words that all formats share; of `pwr`, which a supply and what it feeds both have, none.
std::string_view electrical_type(std::string_view type) {
  static constexpr std::pair<std::string_view, std::string_view> types[] = {
      {"in", "input"},          {"out", "output"},      {"io", "bidirectional"},
      {"oc", "open_collector"}, {"oe", "open_emitter"}, {"pas", "passive"},
      {"tp", "output"},         {"tri", "tri_state"},   {"clk", "input"},
  };
  const auto* const found = std::find_if(std::begin(types), std::end(types),
                                         [&](const auto& row) { return row.first == type; });
  return found == std::end(types) ? std::string_view() : found->second;
}

gxi_pin_t pin_of(const gxi_lepton_pin_t& pin, std::string name) {
  gxi_pin_t made{.name = std::move(name),
                 .type = std::string(pin_type(gxi_lepton_value(pin.attributes, "pintype"))),
                 .at = gxi_lepton_point(pin.tip)};
  if (const auto type = electrical_type(gxi_lepton_value(pin.attributes, "pintype")); !type.empty())
    made.properties.push_back({std::string(gxi_electrical), std::string(type), {}});
  for (const auto& text : pin.attributes)
    if (const auto attribute = text.name();
        !attribute.empty() && !is_among(of_pin_itself, attribute))
      made.properties.push_back({gxi_property_name(attribute), property_value(text.value()), {}});
  return made;
}

void add_hidden_pins(const gxi_lepton_placed_t& placed, gxi_symbol_t& sign) {
  gxi_row_below_t below(sign);
  for (const auto* const link : placed.hidden_links())
    sign.pins.push_back({.name = link->pin, .at = below.next()});
}

gxi_lepton_text_t shifted_text(gxi_lepton_text_t text, gxi_lepton_point_t by) {
  text.at = {text.at.x + by.x, text.at.y + by.y};
  return text;
}

}  // namespace

std::string gxi_lepton_label(const gxi_lepton_pin_t& pin) {
  return gxi_lepton_name(gxi_lepton_value(pin.attributes, "pinlabel"));
}

gxi_symbol_t gxi_lepton_sign(const gxi_lepton_placed_t& placed) {
  const auto& records = *placed.symbol->records;
  gxi_symbol_t sign{.name = placed.symbol->name, .source = {placed.symbol->file, 1}};
  for (const auto& shape : records.shapes)
    for (auto& drawn : gxi_lepton_shapes(shape)) sign.shapes.push_back(std::move(drawn));
  // Attributes of the file are proposals for its components, which have those that are shown.
  for (const auto& text : records.texts)
    if (text.name().empty()) gxi_lepton_draw(text, gxi_lepton_seen(text), sign.texts, sign.shapes);
  for (const auto& text : records.attached)
    gxi_lepton_draw(text, gxi_lepton_seen(text), sign.texts, sign.shapes);
  if (placed.symbol->missing) gxi_draw_missing(placed.component->symbol, sign);
  draw_pins(placed, sign);
  if (placed.role != gxi_lepton_role_t::part && placed.role != gxi_lepton_role_t::block) {
    if (placed.pins.empty()) return sign;
    sign.pins.push_back({.name = "P", .at = gxi_lepton_point(placed.pins.front()->tip)});
    if (placed.role == gxi_lepton_role_t::port)
      sign.properties.push_back({"CLASS", std::string(gxi_lepton_port_class(placed)), {}});
    return sign;
  }
  for (std::size_t i = 0; i < placed.pins.size(); ++i)
    sign.pins.push_back(pin_of(*placed.pins[i], placed.role == gxi_lepton_role_t::part
                                                    ? placed.numbers[i]
                                                    : gxi_lepton_label(*placed.pins[i])));
  for (const auto& text : records.texts) {
    const auto name = text.name();
    if (name.empty() || is_among(told_otherwise, name)) continue;
    (is_among(of_library, name) ? sign.properties : sign.defaults)
        .push_back({gxi_property_name(name), property_value(text.value()), {}});
  }
  if (placed.role == gxi_lepton_role_t::part) add_hidden_pins(placed, sign);
  return sign;
}

std::string gxi_lepton_sign_key(const gxi_lepton_placed_t& placed) {
  std::string key = std::to_string(static_cast<int>(placed.role));
  if (placed.role == gxi_lepton_role_t::port) key += gxi_lepton_port_class(placed);
  if (placed.role == gxi_lepton_role_t::block)
    for (const auto& sheet : placed.sheets) key += "\n" + sheet.lexically_normal().string();
  if (placed.role == gxi_lepton_role_t::part) {
    for (const auto& number : placed.numbers) key += "\n" + number;
    for (const auto* const link : placed.hidden_links()) key += "\n:" + link->pin;
  }
  return key;
}

void gxi_lepton_dress(const gxi_lepton_placed_t& placed, gxi_instance_t& instance,
                      gxi_sheet_t& sheet) {
  const bool has_properties =
      placed.role == gxi_lepton_role_t::part || placed.role == gxi_lepton_role_t::block;
  for (const auto& on_page : placed.component->attributes) {
    const auto text = shifted_text(on_page, placed.shift);
    const auto name = text.name();
    const auto seen = gxi_lepton_seen(text);
    const bool value_alone = !seen.empty() && text.show == gxi_lepton_text_t::show_t::value &&
                             seen.find('\n') == std::string::npos;
    if (name.empty() || !has_properties) {
      if (name == "refdes" && placed.role == gxi_lepton_role_t::port && value_alone &&
          !instance.name_look)
        instance.name_look = gxi_lepton_look(text);
      else
        gxi_lepton_draw(text, seen, sheet.texts, sheet.shapes);
      continue;
    }
    if (name == "refdes" && value_alone && text.value() == placed.name && !instance.name_look) {
      instance.name_look = gxi_lepton_look(text);
      continue;
    }
    const bool is_property = !is_among(told_otherwise, name);
    if (is_property)
      instance.properties.push_back({gxi_property_name(name), property_value(text.value()), {}});
    if (is_property && value_alone)
      instance.properties.back().look = gxi_lepton_look(text);
    else if (!seen.empty())
      gxi_show(property_value(seen), gxi_lepton_look(text), instance.properties);
  }
}

void gxi_lepton_write(gxi_lepton_text_t text, gxi_lepton_point_t shift, gxi_sheet_t& sheet) {
  text = shifted_text(std::move(text), shift);
  gxi_lepton_draw(text, gxi_lepton_seen(text), sheet.texts, sheet.shapes);
}

std::string gxi_lepton_class(const gxi_lepton_placed_t& placed) {
  std::string letters;
  for (const char c : placed.name) {
    const char big = gx_upper_case(c);
    if (big < 'A' || big > 'Z') break;
    letters += big;
  }
  if (letters.empty()) return "DEVICE";
  return gxi_class_has_meaning(letters) ? letters + "_" : letters;
}

std::string_view gxi_lepton_port_class(const gxi_lepton_placed_t& placed) {
  const auto device = placed.value("device");
  return device == "INPUT" ? "PORTIN" : device == "OUTPUT" ? "PORTOUT" : "PORTIO";
}
