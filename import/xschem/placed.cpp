// Roles, formats, what is ignored.
#include "import/xschem/placed.h"

#include <algorithm>
#include <filesystem>

#include "deck/expression.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "import/drawing/netlist_text.h"
#include "import/drawing/placement.h"
#include "import/xschem/labels.h"
#include "import/xschem/picture.h"
#include "import/xschem/tcl/tcl.h"
#include "import/xschem/tcl/tcl_words.h"

namespace {

constexpr int most_nested = 4;  // attributes within attributes

// "#2:name": an attribute of a pin.
std::string value_of_pin(const gxi_xschem_symbol_t& symbol, std::string_view name) {
  const auto colon = name.find(':');
  if (colon == std::string_view::npos) return {};
  const auto pin = gx_whole_number<std::size_t>(name.substr(1, colon - 1));
  if (!pin || *pin >= symbol.pins.size()) return {};
  return std::string(symbol.pins[*pin].attributes.get(name.substr(colon + 1)));
}

void warn(gxm_messages_t& messages, const gxi_xschem_placed_t& placed, const std::string& what) {
  gxm_complain(messages, placed.source(), std::string(placed.value("name")) + ": " + what);
}

// An attribute that Tcl may decide.
std::string decided(const gxi_xschem_placed_t& placed, std::string_view name, std::string_view text,
                    gxm_messages_t& messages) {
  const auto plain = gxi_xschem_plain_tcl(text, *placed.symbol->scope);
  if (plain.is_plain) return plain.text;
  warn(messages, placed, std::string(name) + " is what Tcl decides: it is not heeded");
  return {};
}

void take_ignored(gxi_xschem_placed_t& placed, bool is_top, gxm_messages_t& messages) {
  // What the symbol says holds for all its instances.
  for (const auto text :
       {placed.value("spice_ignore"), placed.symbol->attributes.get("spice_ignore")}) {
    const auto ignore = decided(placed, "spice_ignore", text, messages);
    placed.shorted = ignore == "short";
    placed.ignored = gxi_xschem_truth(ignore).value_or(false);
    if (placed.shorted || placed.ignored) break;
  }
  // Commands below the top are only not read.
  if (!is_top && placed.role == gxi_xschem_role_t::device &&
      gxi_xschem_truth(placed.value("only_toplevel")).value_or(false))
    placed.ignored = true;
}

bool has(const gxi_xschem_placed_t& placed, std::string_view name) {
  return placed.attributes.find(name) != nullptr || placed.symbol->defaults.find(name) != nullptr;
}

// Names that stand for something without an attribute.
bool is_given(std::string_view name) {
  constexpr std::string_view names[] = {"symname", "prop_ptr", "schname", "schname_ext"};
  return name.starts_with("#") || std::ranges::find(names, name) != std::end(names);
}

bool is_of_block(const gxi_xschem_placed_t& placed, std::string_view name) {
  return !has(placed, name) && placed.within != nullptr && has(*placed.within, name);
}

// Each "expr(...)", "expr_eng(...)" and "expr_eng4(...)" as its number, or in quotes where it has
// names.
std::string calculated(std::string text) {
  constexpr std::string_view call = "expr";
  for (std::size_t at = 0; (at = text.find(call, at)) != std::string::npos;) {
    auto open = at + call.size();
    for (const std::string_view form : {"_eng4(", "_eng("})
      if (text.compare(open, form.size(), form) == 0) open += form.size() - 1;
    if (open >= text.size() || text[open] != '(') {
      at = open;
      continue;
    }
    const auto length = gxi_xschem_tcl_closed(std::string_view(text).substr(open), '(', ')');
    if (length == std::string::npos) break;
    std::string inner = text.substr(open + 1, length - 2);
    std::erase(inner, '\'');
    const auto number = dk_evaluate(inner);
    const std::string given = number ? dk_number_text(*number) : "'" + inner + "'";
    text.replace(at, open - at + length, given);
    at += given.size();
  }
  return text;
}

// The text of a format with the values of attributes in calls of Tcl.
std::string with_arguments(const gxi_xschem_placed_t& placed, std::string_view format) {
  std::string all;
  while (!format.empty()) {
    const auto open = std::min(format.find('['), format.size());
    all += format.substr(0, open);
    format.remove_prefix(open);
    auto length = std::min<std::size_t>(gxi_xschem_tcl_closed(format, '[', ']'), format.size());
    const auto words =
        gxi_xschem_tcl_commands_t(format.substr(std::min<std::size_t>(1, length))).next();
    const bool calls = !words.empty() && (words[0].text == "expr" ||
                                          placed.symbol->scope->procedures.contains(words[0].text));
    if (!calls) length = std::min<std::size_t>(1, format.size());
    const auto part = format.substr(0, length);
    all += calls ? gxi_xschem_substitute(
                       part,
                       [&](std::string_view name) { return gxi_xschem_whole_value(placed, name); })
                 : std::string(part);
    format.remove_prefix(length);
  }
  return all;
}

void take_devices(gxi_xschem_placed_t& placed, std::string_view format) {
  placed.devices = gxi_xschem_devices(format, *placed.symbol, [&](std::string_view name) {
    return gxi_xschem_whole_value(placed, name);
  });
  if (placed.devices.empty()) placed.devices.emplace_back();
  std::vector<bool> named(placed.symbol->pins.size());
  for (const auto& device : placed.devices)
    for (const auto& node : device.nodes)
      if (node.pin >= 0) named[static_cast<std::size_t>(node.pin)] = true;
  for (std::size_t pin = 0; pin < named.size(); ++pin)
    if (const auto& one = placed.symbol->pins[pin]; !named[pin] && one.same_as < 0 && !one.ignored)
      placed.devices.front().nodes.push_back({.pin = static_cast<int>(pin)});
}

}  // namespace

std::string_view gxi_xschem_placed_t::value(std::string_view name) const {
  const auto* const own = attributes.find(name);
  return own != nullptr ? std::string_view(*own) : symbol->defaults.get(name);
}

gxi_xschem_placed_t gxi_xschem_place(const gxi_xschem_component_t& component,
                                     const gxi_xschem_symbol_t& symbol, std::string_view file,
                                     bool is_top, const gxi_xschem_placed_t* within,
                                     gxm_messages_t& messages) {
  gxi_xschem_placed_t placed{
      .component = &component, .symbol = &symbol, .file = file, .within = within};
  placed.attributes = gxi_xschem_attributes_t(component.attributes);
  if (symbol.missing)
    gxm_complain(messages, placed.source(),
                 "symbol " + component.symbol + " is not found; its pins are not joined");
  const auto* const own = placed.attributes.find("format");
  const auto text = with_arguments(placed, own ? *own : symbol.attributes.get("format"));
  const auto format = gxi_xschem_plain_tcl(text, *symbol.scope);
  placed.role = own ? gxi_xschem_role(symbol.type, format.text) : symbol.role;
  take_ignored(placed, is_top, messages);
  placed.names = gxi_xschem_bits(placed.value("name"));
  const auto instance = gxi_xschem_instance(component, file);
  for (const auto& pin : symbol.pins)
    placed.pins.push_back(gxi_on_sheet(instance, gxi_xschem_point(pin.at)));
  if (!placed.ignored && !symbol.type.starts_with("netlist_"))
    placed.commands = gxi_xschem_commands(format.text, symbol, [&](std::string_view name) {
      return gxi_xschem_whole_value(placed, name);
    });
  if (placed.role != gxi_xschem_role_t::device) return placed;
  if (!format.is_plain && !placed.ignored)
    warn(messages, placed, "what Tcl adds to its format is left out");
  take_devices(placed, format.text);
  for (const auto& [attribute, value] : placed.attributes.all()) {
    const auto in_line = [&own_name = attribute](const auto& device) {
      return std::ranges::find(device.named, own_name) != device.named.end();
    };
    if (!gxi_xschem_plain_tcl(value, *symbol.scope).is_plain && !placed.ignored &&
        std::ranges::any_of(placed.devices, in_line))
      warn(messages, placed, "Tcl in its " + attribute + " is not all read");
  }
  return placed;
}

void gxi_xschem_order_nodes(gxi_xschem_placed_t& placed, std::string_view netlist) {
  if (placed.devices.empty()) return;
  const auto ports = gxi_netlist_ports(netlist, gxi_xschem_value(placed, "symname"));
  auto& nodes = placed.devices.front().nodes;
  std::vector<gxi_xschem_node_t> ordered;
  for (std::size_t at = 0; at < ports.size();) {
    const auto begins = [&](const gxi_xschem_node_t& node) {
      const auto names = gxi_xschem_pin_names(placed, node);
      return std::equal(
          names.begin(), names.end(), ports.begin() + static_cast<std::ptrdiff_t>(at),
          ports.begin() + static_cast<std::ptrdiff_t>(std::min(at + names.size(), ports.size())),
          [](const auto& a, const auto& b) { return gx_iden(a, b); });
    };
    const auto found = std::find_if(nodes.begin(), nodes.end(), begins);
    if (found == nodes.end()) return;
    at += gxi_xschem_pin_names(placed, *found).size();
    ordered.push_back(*found);
  }
  if (ordered.size() == nodes.size()) nodes = std::move(ordered);
}

std::vector<std::string> gxi_xschem_pin_names(const gxi_xschem_placed_t& placed,
                                              const gxi_xschem_node_t& node) {
  if (node.pin < 0) return {node.name};
  const auto& pin = placed.symbol->pins[static_cast<std::size_t>(node.pin)];
  const auto base = pin.bits.front().substr(0, pin.bits.front().find('['));
  if (node.width <= 1) return pin.any_width ? std::vector<std::string>{base} : pin.bits;
  std::vector<std::string> names;
  for (std::size_t bit = node.width; bit > 0; --bit)
    names.push_back(base + "[" + std::to_string(bit - 1) + "]");
  return names;
}

std::string gxi_xschem_value(const gxi_xschem_placed_t& placed, std::string_view name) {
  const std::filesystem::path file(placed.file);
  if (name == "symname") {
    // A schematic of its own gives the cell another name.
    const auto* const own = placed.attributes.find("schematic");
    const auto named = gxi_xschem_plain_tcl(own != nullptr ? *own : "", *placed.symbol->scope);
    if (!named.is_plain || named.text.empty()) return placed.symbol->name;
    return std::filesystem::path(named.text).stem().string();
  }
  if (name == "prop_ptr") return placed.component->attributes;
  if (name == "schname") return file.stem().string();
  if (name == "schname_ext") return file.filename().string();
  if (name.substr(0, 1) == "#") return value_of_pin(*placed.symbol, name);
  return gxi_xschem_plain_tcl(placed.value(name), *placed.symbol->scope).text;
}

std::string gxi_xschem_whole_value(const gxi_xschem_placed_t& placed, std::string_view name) {
  if (name == "savecurrent") return {};  // a command of its own (import/xschem/deck_lines.h)
  std::string text = gxi_xschem_value(placed, name);
  for (int depth = 0; depth < most_nested && text.find('@') != std::string::npos; ++depth)
    text = gxi_xschem_substitute(text, [&](std::string_view inner) {
      if (is_of_block(placed, inner)) return std::string(inner);
      const bool is_known = has(placed, inner) || is_given(inner);
      return is_known ? gxi_xschem_value(placed, inner) : "@" + std::string(inner);
    });
  return calculated(std::move(text));
}

std::set<std::string> gxi_xschem_parameters_of(const gxi_xschem_placed_t& placed) {
  std::set<std::string> names;
  if (placed.within == nullptr) return names;
  for (const auto* const list : {&placed.attributes, &placed.symbol->defaults})
    for (const auto& [attribute, value] : list->all())
      if (value.find('@') != std::string::npos)
        gxi_xschem_substitute(value, [&](std::string_view name) {
          if (is_of_block(placed, name)) names.emplace(name);
          return std::string();
        });
  return names;
}

gxi_instance_t gxi_xschem_instance(const gxi_xschem_component_t& component, std::string_view file) {
  gxi_instance_t instance;
  instance.source = {file, component.line};
  instance.at = gxi_xschem_point(component.at);
  instance.rotate = static_cast<std::uint8_t>((4 - component.rotate) % 4);
  instance.mirror = component.flip;
  return instance;
}
