// Roles, formats, what is ignored.
#include "import/xschem/placed.h"

#include <algorithm>
#include <filesystem>

#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "import/drawing/netlist_text.h"
#include "import/drawing/placement.h"
#include "import/xschem/labels.h"
#include "import/xschem/picture.h"
#include "import/xschem/tcl.h"

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
  const auto plain = gxi_xschem_plain_tcl(text);
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

// The value of an attribute with those that it refers to.
std::string whole_value(const gxi_xschem_placed_t& placed, std::string_view name) {
  if (name == "savecurrent") return {};  // a command of its own (import/xschem/deck_lines.h)
  std::string text = gxi_xschem_value(placed, name);
  for (int depth = 0; depth < most_nested && text.find('@') != std::string::npos; ++depth)
    text = gxi_xschem_substitute(
        text, [&](std::string_view inner) { return gxi_xschem_value(placed, inner); });
  return text;
}

void take_devices(gxi_xschem_placed_t& placed, std::string_view format) {
  placed.devices = gxi_xschem_devices(
      format, *placed.symbol, [&](std::string_view name) { return whole_value(placed, name); });
  if (placed.devices.empty()) placed.devices.emplace_back();
  std::vector<bool> named(placed.symbol->pins.size());
  for (const auto& device : placed.devices)
    for (const auto& node : device.nodes)
      if (node.pin >= 0) named[static_cast<std::size_t>(node.pin)] = true;
  for (std::size_t pin = 0; pin < named.size(); ++pin)
    if (!named[pin] && placed.symbol->pins[pin].same_as < 0)
      placed.devices.front().nodes.push_back({.pin = static_cast<int>(pin)});
}

}  // namespace

std::string_view gxi_xschem_placed_t::value(std::string_view name) const {
  const auto* const own = attributes.find(name);
  return own != nullptr ? std::string_view(*own) : symbol->defaults.get(name);
}

gxi_xschem_placed_t gxi_xschem_place(const gxi_xschem_component_t& component,
                                     const gxi_xschem_symbol_t& symbol, std::string_view file,
                                     bool is_top, gxm_messages_t& messages) {
  gxi_xschem_placed_t placed{.component = &component, .symbol = &symbol, .file = file};
  placed.attributes = gxi_xschem_attributes_t(component.attributes);
  if (symbol.missing)
    gxm_complain(messages, placed.source(),
                 "symbol " + component.symbol + " is not found; its pins are not joined");
  const auto* const own = placed.attributes.find("format");
  const auto format = gxi_xschem_plain_tcl(own ? *own : symbol.attributes.get("format"));
  placed.role = own ? gxi_xschem_role(symbol.type, format.text) : symbol.role;
  take_ignored(placed, is_top, messages);
  placed.names = gxi_xschem_bits(placed.value("name"));
  const auto instance = gxi_xschem_instance(component, file);
  for (const auto& pin : symbol.pins)
    placed.pins.push_back(gxi_on_sheet(instance, gxi_xschem_point(pin.at)));
  if (!placed.ignored && !symbol.type.starts_with("netlist_"))
    placed.commands = gxi_xschem_commands(
        format.text, symbol, [&](std::string_view name) { return whole_value(placed, name); });
  if (placed.role != gxi_xschem_role_t::device) return placed;
  if (!format.is_plain && !placed.ignored)
    warn(messages, placed, "what Tcl adds to its format is left out");
  take_devices(placed, format.text);
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
  const auto& bits = placed.symbol->pins[static_cast<std::size_t>(node.pin)].bits;
  const auto base = bits.front().substr(0, bits.front().find('['));
  if (node.width <= 1) {
    const bool told = bits.size() > 1 || bits.front().find(':') == std::string::npos;
    return told ? bits : std::vector<std::string>{base};
  }
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
    const auto named = gxi_xschem_plain_tcl(own != nullptr ? *own : "");
    if (!named.is_plain || named.text.empty()) return placed.symbol->name;
    return std::filesystem::path(named.text).stem().string();
  }
  if (name == "prop_ptr") return placed.component->attributes;
  if (name == "schname") return file.stem().string();
  if (name == "schname_ext") return file.filename().string();
  if (name.substr(0, 1) == "#") return value_of_pin(*placed.symbol, name);
  return gxi_xschem_plain_tcl(placed.value(name)).text;
}

gxi_instance_t gxi_xschem_instance(const gxi_xschem_component_t& component, std::string_view file) {
  gxi_instance_t instance;
  instance.source = {file, component.line};
  instance.at = gxi_xschem_point(component.at);
  instance.rotate = static_cast<std::uint8_t>((4 - component.rotate) % 4);
  instance.mirror = component.flip;
  return instance;
}
