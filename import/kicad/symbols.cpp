#include "import/kicad/symbols.h"

#include <algorithm>
#include <charconv>

namespace {

int whole(std::string_view text) {
  int value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

gxi_kicad_pin_t pin_of(const gxi_kicad_list_t& item, const gxi_kicad_symbol_t& symbol) {
  gxi_kicad_pin_t pin{.line = item.line(),
                      .type = std::string(item.word(1)),
                      .shape = std::string(item.word(2)),
                      .at = gxi_kicad_point(item.child("at")),
                      .rotate = gxi_kicad_quarters(item.child("at"))};
  if (const auto length = item.child("length")) pin.length = length.length(1);
  pin.hidden = item.flag("hide");
  const auto name = gxi_kicad_text(item.child("name"), item.child("name").word(1));
  const auto number = gxi_kicad_text(item.child("number"), item.child("number").word(1));
  pin.name = name.text == "~" ? std::string() : name.text;
  pin.number = number.text == "~" ? std::string() : number.text;
  pin.name_size = symbol.names_hidden || name.hidden ? 0 : name.size;
  pin.number_size = symbol.numbers_hidden || number.hidden ? 0 : number.size;
  for (const auto& list : item.children())
    if (list.keyword() == "alternate")
      pin.alternates.emplace(list.word(1), std::string(list.word(2)));
  return pin;
}

// Its angle is in tenths of degrees; KiCad draws upwards whatever is turned.
gxi_kicad_text_t text_of(const gxi_kicad_list_t& item) {
  auto text = gxi_kicad_text(item, item.word(1));
  const auto angle = item.child("at").word(3);
  text.rotate = angle.empty() || angle == "0" ? 0 : 1;
  return text;
}

// NAME_UNIT_STYLE.
gxi_kicad_unit_t unit_of(const gxi_kicad_list_t& item, const gxi_kicad_symbol_t& symbol) {
  gxi_kicad_unit_t unit;
  const auto name = item.word(1);
  const auto second = name.rfind('_');
  const auto first = second == 0 || second == std::string_view::npos ? std::string_view::npos
                                                                     : name.rfind('_', second - 1);
  if (first == std::string_view::npos)
    item.refuse("the unit \"" + std::string(name) + "\" has no numbers in its name");
  unit.unit = whole(name.substr(first + 1, second - first - 1));
  unit.style = whole(name.substr(second + 1));
  for (const auto& list : item.children()) {
    if (list.keyword() == "pin")
      unit.pins.push_back(pin_of(list, symbol));
    else if (list.keyword() == "text")
      unit.texts.push_back(text_of(list));
    else
      gxi_kicad_shape(list, unit.shapes);
    if (list.keyword() == "text_box") unit.texts.push_back(gxi_kicad_boxed_text(list, true));
  }
  return unit;
}

std::shared_ptr<gxi_kicad_symbol_t> symbol_of(const gxi_kicad_list_t& item) {
  auto symbol = std::make_shared<gxi_kicad_symbol_t>();
  symbol->line = item.line();
  symbol->name = item.word(1);
  if (const auto power = item.child("power")) {
    symbol->power = true;
    symbol->local_power = power.word(1) == "local";
  }
  const auto names = item.child("pin_names");
  symbol->names_hidden = names.flag("hide");
  if (const auto offset = names.child("offset")) symbol->name_offset = offset.length(1);
  symbol->numbers_hidden = item.child("pin_numbers").flag("hide");
  symbol->same_numbers_joined = item.flag("duplicate_pin_numbers_are_jumpers");
  for (const auto& list : item.children()) {
    if (list.keyword() == "property") symbol->fields.push_back(gxi_kicad_field(list));
    if (list.keyword() == "symbol") symbol->units.push_back(unit_of(list, *symbol));
    if (list.keyword() != "jumper_pin_groups") continue;
    for (const auto& group : list.children()) {
      auto& numbers = symbol->jumpers.emplace_back();
      for (int i = 0; !group.word(i).empty(); ++i) numbers.emplace_back(group.word(i));
    }
  }
  for (const auto& unit : symbol->units)
    symbol->number_of_units = std::max(symbol->number_of_units, unit.unit);
  return symbol;
}

}  // namespace

gxi_kicad_symbols_t gxi_kicad_read_symbols(const gxi_kicad_list_t& library) {
  gxi_kicad_symbols_t symbols;
  std::map<std::string, std::pair<std::string, gxi_kicad_list_t>, std::less<>> derived;
  for (const auto& list : library.children()) {
    if (list.keyword() != "symbol") continue;
    auto symbol = symbol_of(list);
    if (const auto base = list.child("extends"))
      derived.emplace(symbol->name, std::pair(std::string(base.word(1)), list));
    auto name = symbol->name;
    symbols.emplace(std::move(name), std::move(symbol));
  }
  // The base stands in the same library, by its name without that of the library.
  for (auto& [name, from] : derived) {
    auto base = symbols.find(from.first);
    const auto colon = name.find(':');
    if (base == symbols.end() && colon != std::string::npos)
      base = symbols.find(name.substr(0, colon + 1) + from.first);
    if (base == symbols.end())
      from.second.refuse("the symbol " + name + " extends " + from.first + ", which is not here");
    if (derived.contains(base->first))
      from.second.refuse("the symbol " + name + " extends " + from.first +
                         ", which extends another one");
    auto whole = std::make_shared<gxi_kicad_symbol_t>(*base->second);
    const auto& own = *symbols.at(name);
    whole->name = own.name;
    whole->line = own.line;
    whole->fields = own.fields;
    whole->power = whole->power || own.power;
    symbols[name] = std::move(whole);
  }
  return symbols;
}
