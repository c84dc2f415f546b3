// From the sheets of xschem to a drawing: cells, instances of vectors, ports, globals, pictures.
#include "import/xschem/reader.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <span>
#include <sstream>

#include "gx/text/at.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "import/drawing/hierarchy.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/names.h"
#include "import/drawing/parameters.h"
#include "import/drawing/placement.h"
#include "import/drawing/source_file.h"
#include "import/drawing/text_devices.h"
#include "import/xschem/deck_lines.h"
#include "import/xschem/labels.h"
#include "import/xschem/nets.h"
#include "import/xschem/picture.h"
#include "import/xschem/signs.h"
#include "import/xschem/tcl/tcl.h"

namespace {

namespace fs = std::filesystem;

class xschem_reader {
 public:
  explicit xschem_reader(const gxi_input_t& input) : input_(input), library_(input, design_) {}

  gxi_design_t run() {
    const auto top = fs::absolute(input_.pages.front()).lexically_normal();
    design_.cells.emplace_back().name = top.stem().string();
    auto beside = top;
    beside.replace_extension(".sym");
    // The top is drawn nowhere, yet has the pins and the defaults of its symbol.
    const gxi_xschem_component_t undrawn{.symbol = beside.string()};
    std::optional<gxi_xschem_placed_t> placed;
    if (fs::is_regular_file(beside)) {
      gxm_messages_t none;
      placed = gxi_xschem_place(undrawn, library_.symbol(undrawn, top), {}, true, nullptr, none);
      cell(0).symbol = gxi_xschem_sign(*placed, 0);
      cell(0).deck.parameters = gxi_xschem_deck_parameters(*placed);
    }
    read_sheet(0, placed ? &*placed : nullptr, top);
    declare_globals();
    gxi_take_top_defaults(design_);
    design_.parameters.assign(parameters_.begin(), parameters_.end());
    gxi_keep_most_used(design_, {of_parts_, parameters_, composed_}, used_up_);
    if (has_noconn_) design_.kept_of_nets.push_back(std::string(gxi_noconn));
    return std::move(design_);
  }

 private:
  gxi_cell_t& cell(int index) { return gx_at(design_.cells, index); }

  // The sheet of a component, when it has one that is read.
  std::optional<fs::path> sheet_of(const gxi_xschem_placed_t& placed, const fs::path& sheet) const {
    const auto& symbol = *placed.symbol;
    if (symbol.type != "subcircuit" || !text_of(placed, "spice_sym_def").empty())
      return std::nullopt;
    if (symbol.attributes.get("default_schematic") == "ignore" &&
        placed.attributes.get("schematic").empty())
      return std::nullopt;
    for (const auto* const stop : {"spice_primitive", "spice_stop"})
      if (gxi_xschem_truth(text_of(placed, stop)).value_or(false)) return std::nullopt;
    const auto named = plain_text(text_of(placed, "schematic"));
    if (!named.text.empty() && named.is_plain) {
      std::string name = named.text;
      if (!fs::path(name).has_extension()) name += ".sch";
      if (auto found = library_.find(name, symbol.path.empty() ? sheet : symbol.path)) return found;
    }
    auto path = symbol.path;
    if (path.empty()) return library_.find(symbol.name + ".sch", sheet);
    path.replace_extension(".sch");
    return fs::is_regular_file(path) ? std::optional(path) : std::nullopt;
  }

  gxi_xschem_tcl_t plain_text(std::string_view text) const {
    return gxi_xschem_plain_tcl(text, library_.scope());
  }

  // An attribute of the component, else of its symbol.
  static std::string_view text_of(const gxi_xschem_placed_t& placed, std::string_view name) {
    const auto* const own = placed.attributes.find(name);
    return own != nullptr ? std::string_view(*own) : placed.symbol->attributes.get(name);
  }

  // What makes cells of one symbol differ: the sheet, and the nodes of the line.
  static std::string key_of(const gxi_xschem_placed_t& placed, std::size_t line,
                            const std::optional<fs::path>& below) {
    std::string key = below ? below->lexically_normal().string() : "";
    key += "\n" + std::to_string(line) + std::string(text_of(placed, "spice_sym_def"));
    if (placed.role == gxi_xschem_role_t::device)
      for (const auto& node : placed.devices[line].nodes)
        key += node.pin >= 0 ? " " + std::to_string(node.pin) + "*" + std::to_string(node.width)
                             : " @" + node.name;
    return key;
  }

  static std::string whole_lines(std::string text) {
    if (!text.empty() && text.back() != '\n') text += '\n';
    return text;
  }

  int cell_of(const gxi_xschem_placed_t& placed, std::size_t line, const fs::path& sheet) {
    const auto below = sheet_of(placed, sheet);
    std::vector<fs::path> sheets;
    if (below) sheets.push_back(*below);
    const auto [index, is_new] =
        hierarchy_.cell(placed.symbol, key_of(placed, line, below), sheets, placed.source());
    if (!is_new) return index;
    cell(index).name = below ? below->stem().string() : placed.symbol->name;
    cell(index).symbol = gxi_xschem_sign(placed, line);
    cell(index).notes = text_of(placed, "spice_sym_def");
    if (cell(index).notes.empty()) cell(index).notes = text_of(placed, "device_model");
    if (!cell(index).notes.empty()) cell(index).notes += "\n";
    auto& deck = cell(index).deck;
    if (below) {
      deck.subcircuit = gxi_xschem_value(placed, "symname");
      deck.parameters = gxi_xschem_deck_parameters(placed);
    } else {
      deck.definition = whole_lines(plain_text(text_of(placed, "spice_sym_def")).text);
    }
    if (below)
      read_sheet(index, &placed, *below);
    else if (placed.role == gxi_xschem_role_t::device)
      cell(index).symbol.properties.push_back({"CLASS", gxi_xschem_class(*placed.symbol), {}});
    return index;
  }

  // --- sheets
  // `as`: the component that the sheet is first below, if any.
  void read_sheet(int index, const gxi_xschem_placed_t* as, const fs::path& path) {
    const auto level = hierarchy_.enter({&path, 1});
    const auto [records, file] = library_.read(path);
    std::vector<gxi_xschem_placed_t> placed;
    for (const auto& component : records.components)
      if (component.embedded) library_.symbol(component, path);
    for (const auto& component : records.components)
      placed.push_back(place(component, path, file, index == 0, as));
    std::vector<const gxi_xschem_shape_t*> wires;
    for (const auto& shape : records.shapes)
      if (shape.kind == 'N') wires.push_back(&shape);
    auto nets = gxi_xschem_join(placed, wires, file, design_.warnings);
    for (std::size_t i = 0; i < placed.size(); ++i) widen(placed[i], nets, i);

    gxi_sheet_t sheet;
    sheet.source = {file, 1};
    draw(records, placed, nets, sheet);
    for (std::size_t i = 0; i < placed.size(); ++i) add(sheet, placed[i], i, nets, path);
    // Nodes that a symbol's line names besides its pins are pins of the cell, too.
    if (as != nullptr && as->role == gxi_xschem_role_t::device)
      for (const auto& node : as->devices.front().nodes)
        if (node.pin < 0) {
          const auto found = nets.by_name.find(gx_upper(node.name));
          if (found != nets.by_name.end()) gx_at(nets.nets, found->second).port = node.name;
        }
    for (std::size_t i = 0; i < wires.size(); ++i) draw_wire(*wires[i], nets, i);
    for (const auto& one : placed) take_parameters(index, one);
    take_statements(index, records, placed, sheet, nets);
    sheet.nets = std::move(nets.nets);
    if (index != 0) hide_globals(sheet);
    cell(index).sheet = std::move(sheet);
  }

  // Attributes of the block that its sheet refers to by "@NAME" are parameters of the cell.
  void take_parameters(int index, const gxi_xschem_placed_t& placed) {
    auto& known = cell(index).deck.parameters;
    for (const auto& name : gxi_xschem_parameters_of(placed)) {
      handed_[index].insert(name);
      parameters_.insert(name);
      const auto is = [&](const auto& parameter) { return parameter.first == name; };
      if (std::ranges::none_of(known, is))
        known.emplace_back(name, placed.within->symbol->defaults.get(name));
    }
  }

  // Texts of the netlist: devices in them, and statements of the deck.
  void take_statements(int index, const gxi_xschem_file_t& records,
                       const std::vector<gxi_xschem_placed_t>& placed, gxi_sheet_t& sheet,
                       gxi_xschem_nets_t& nets) {
    std::string header, text = records.spice + "\n", end, commands;
    for (std::size_t i = 0; i < placed.size(); ++i) {
      const auto& one = placed[i];
      if (!one.ignored)
        commands += gxi_xschem_deck_commands(one, [&](int pin) {
          const auto& bundle = gx_at(nets.bundles, gx_at(nets.bundle_of_pin[i], pin));
          return gx_at(nets.nets, bundle.nets.front()).name;
        });
      if (!says_netlist(one, index == 0)) continue;
      if (!plain_text(one.value("value")).is_plain)
        gxm_complain(design_.warnings, one.source(),
                     std::string(one.value("name")) + ": Tcl in its text is not all read");
      const auto where = one.value("place");
      (where == "header" ? header
       : where == "end"  ? end
                         : text) += gxi_xschem_statements(one) + "\n";
    }
    if ((header + text + end).find_first_not_of(" \n\t") != std::string::npos)
      cell(index).notes = header + text + end;
    const auto rest = [&](const std::string& lines) {
      return text_devices_.add(lines, sheet, [&](const std::string& node) {
        return nets.named(node, sheet.source).front();
      });
    };
    header = rest(header);
    text = commands + rest(text);
    end = rest(end);
    auto& deck = cell(index).deck;
    deck.header = std::move(header);
    deck.statements = std::move(text);
    deck.end = std::move(end);
  }

  static bool says_netlist(const gxi_xschem_placed_t& component, bool is_top) {
    if (component.symbol->type != "netlist_commands" || component.ignored) return false;
    const auto simulator = component.value("simulator");
    const auto only_top = component.value("only_toplevel");
    return (simulator.empty() || simulator == "ngspice") && (is_top || only_top != "true");
  }

  gxi_xschem_placed_t place(const gxi_xschem_component_t& component, const fs::path& path,
                            std::string_view file, bool is_top, const gxi_xschem_placed_t* within) {
    auto placed = gxi_xschem_place(component, library_.symbol(component, path), file, is_top,
                                   within, design_.warnings);
    const auto text = text_of(placed, "spice_sym_def");
    if (!text.empty()) gxi_xschem_order_nodes(placed, definition(placed, text, path));
    return placed;
  }

  // The netlist text that replaces a sheet, or the file that it includes.
  std::string definition(const gxi_xschem_placed_t& placed, std::string_view text,
                         const fs::path& sheet) {
    std::string plain = plain_text(text).text;
    std::istringstream words(plain);
    std::string command, name;
    words >> command >> name;
    if (!gx_iden(command, ".include") && !gx_iden(command, ".inc")) return plain;
    std::erase(name, '"');
    const auto& beside = placed.symbol->path.empty() ? sheet : placed.symbol->path;
    const auto path = library_.find(name, beside);
    if (path) return gxi_read_source(*path);
    gxm_complain(design_.warnings, placed.source(),
                 name + " is not found; its nodes are in the order of the symbol's pins");
    return plain;
  }

  // Pins whose names do not say their bits, as of a gate of any number of inputs, have those of
  // their labels.
  static void widen(gxi_xschem_placed_t& placed, const gxi_xschem_nets_t& nets, std::size_t i) {
    if (placed.ignored) return;
    for (auto& device : placed.devices)
      for (auto& node : device.nodes) {
        if (node.pin < 0) continue;
        const auto& pin = gx_at(placed.symbol->pins, node.pin);
        const bool as_label = pin.any_width || (device.letter == 'A' && pin.bits.size() == 1);
        if (as_label && placed.names.size() == 1)
          node.width = gx_at(nets.bundles, gx_at(nets.bundle_of_pin[i], node.pin)).nets.size();
      }
  }

  static void draw(const gxi_xschem_file_t& records, std::span<const gxi_xschem_placed_t> placed,
                   const gxi_xschem_nets_t& nets, gxi_sheet_t& sheet) {
    gxm_shape_t drawn;
    for (const auto& shape : records.shapes)
      if (gxi_xschem_shape(shape, drawn)) sheet.shapes.push_back(drawn);
    for (const auto& text : records.texts) {
      const gxi_xschem_attributes_t attributes(text.attributes);
      if (attributes.get("hide") == "true" || text.text.starts_with("tcleval(")) continue;
      const auto i = component_of(attributes, placed);
      if (i == placed.size()) {
        sheet.texts.push_back({text.text, gxi_xschem_look(text)});
      } else if (auto value = gxi_xschem_shown_value(text, values_of(placed[i], i, nets))) {
        sheet.texts.push_back({std::move(*value), gxi_xschem_look(text)});
      }
    }
  }

  // The component whose values a text of the sheet shows; their number where it shows none.
  static std::size_t component_of(const gxi_xschem_attributes_t& text,
                                  std::span<const gxi_xschem_placed_t> placed) {
    const auto name = text.get(text.find("floater") != nullptr ? "floater" : "name");
    if (name.empty()) return placed.size();
    const auto has_name = [&](const auto& one) { return one.value("name") == name; };
    return static_cast<std::size_t>(std::ranges::find_if(placed, has_name) - placed.begin());
  }

  static gxi_xschem_value_of_t values_of(const gxi_xschem_placed_t& placed, std::size_t i,
                                         const gxi_xschem_nets_t& nets) {
    return [&placed, &nets, i](std::string_view name) {
      if (name.starts_with('#') && name.ends_with(":resolved_net")) {
        const auto& bundles = nets.bundle_of_pin[i];
        const auto pin = gx_whole_number<std::size_t>(name.substr(1, name.find(':') - 1));
        if (!pin || *pin >= bundles.size()) return std::string();
        return gx_at(nets.nets, gx_at(nets.bundles, bundles[*pin]).nets.front()).name;
      }
      return gxi_xschem_value(placed, name);
    };
  }

  // The wires of a bundle are drawn for its first net, thick.
  static void draw_wire(const gxi_xschem_shape_t& wire, gxi_xschem_nets_t& nets, std::size_t i) {
    const auto& bundle = gx_at(nets.bundles, nets.bundle_of_wire[i]);
    const bool bus =
        bundle.nets.size() > 1 || gxi_xschem_attributes_t(wire.attributes).is_set("bus");
    gx_at(nets.nets, bundle.nets.front())
        .segments.push_back({gxi_xschem_point(wire.points[0]), gxi_xschem_point(wire.points[1]),
                             gxm_cyan, static_cast<std::uint8_t>(bus ? 3 : 1)});
  }

  void add(gxi_sheet_t& sheet, const gxi_xschem_placed_t& placed, std::size_t i,
           gxi_xschem_nets_t& nets, const fs::path& path) {
    gxi_instance_t instance = gxi_xschem_instance(*placed.component, placed.file);
    std::vector<gxi_xschem_shown_t> shown;
    if (!placed.attributes.is_set("hide_texts"))
      shown = gxi_xschem_shown(placed.symbol->records, false, values_of(placed, i, nets));
    const bool takes_part = !placed.ignored && !placed.shorted && !placed.symbol->missing;
    if (placed.role == gxi_xschem_role_t::device && takes_part) {
      for (std::size_t line = 0; line < placed.devices.size(); ++line)
        add_device(sheet, placed, line, i, nets, path, instance, shown);
      return;
    }
    if ((placed.role == gxi_xschem_role_t::label || placed.role == gxi_xschem_role_t::port) &&
        takes_part && !nets.bundle_of_pin[i].empty() && nets.names_its_net[i] &&
        add_label(sheet, placed, i, nets, path, instance, shown))
      return;
    if (placed.role == gxi_xschem_role_t::noconn && takes_part) mark(nets, i);
    gxi_xschem_draw(placed, shown, instance, sheet);
  }

  // Nets that are meant to be joined to one pin.
  void mark(gxi_xschem_nets_t& nets, std::size_t i) {
    for (const int bundle : nets.bundle_of_pin[i])
      for (const int net : gx_at(nets.bundles, bundle).nets) {
        auto& properties = gx_at(nets.nets, net).properties;
        if (properties.empty()) properties.push_back({std::string(gxi_noconn), "1", {}});
        has_noconn_ = true;
      }
  }

  // Ports and symbols of globals become instances; false for a label that is only drawn.
  bool add_label(gxi_sheet_t& sheet, const gxi_xschem_placed_t& placed, std::size_t i,
                 gxi_xschem_nets_t& nets, const fs::path& path, gxi_instance_t instance,
                 const std::vector<gxi_xschem_shown_t>& shown) {
    const auto& bundle = gx_at(nets.bundles, nets.bundle_of_pin[i].front());
    const auto names = gxi_xschem_bits(placed.value("lab"));
    const auto& own =
        placed.attributes.find("global") ? placed.attributes : placed.symbol->defaults;
    const bool global = own.is_set("global") || placed.symbol->attributes.is_set("global");
    if (names.size() != bundle.nets.size()) return false;
    if (placed.role == gxi_xschem_role_t::label) {
      if (!global) return false;
      for (const auto& name : names) globals_.insert(gx_upper(name));
      if (names.size() > 1) return false;
    }
    instance.kind = placed.role == gxi_xschem_role_t::port ? gxi_kind::port : gxi_kind::global;
    instance.symbol = cell_of(placed, 0, path);
    for (const auto& text : shown) {
      if (text.attribute != "lab") continue;
      if (names.size() == 1)
        instance.name_look = gxi_on_sheet(instance, text.look);
      else
        sheet.texts.push_back({text.value, gxi_on_sheet(instance, text.look)});
    }
    for (std::size_t bit = 0; bit < names.size(); ++bit) {
      instance.name = names[bit];
      instance.nets = {bundle.nets[bit]};
      auto& net = gx_at(nets.nets, bundle.nets[bit]);
      if (instance.kind == gxi_kind::port) {
        net.port = names[bit];
        net.port_type = gxi_xschem_port_class(*placed.symbol).substr(4);
      } else {
        net.global = names[bit];
      }
      sheet.instances.push_back(instance);
    }
    return true;
  }

  // One line of the netlist; the symbol is drawn with the first.
  void add_device(gxi_sheet_t& sheet, const gxi_xschem_placed_t& placed, std::size_t line,
                  std::size_t i, gxi_xschem_nets_t& nets, const fs::path& path,
                  gxi_instance_t instance, const std::vector<gxi_xschem_shown_t>& shown) {
    const auto& device = placed.devices[line];
    instance.symbol = cell_of(placed, line, path);
    const auto model = plain_text(text_of(placed, "device_model"));
    if (!model.text.empty() && models_.insert(model.text).second)
      cell(0).deck.definition += whole_lines(model.text);
    const bool is_leaf = !cell(instance.symbol).sheet;
    auto& named = is_leaf ? of_parts_ : parameters_;
    named.insert(device.named.begin(), device.named.end());
    for (const auto& [name, value] : device.parameters) composed_.insert(name);
    used_up_.insert(device.used_up.begin(), device.used_up.end());
    const auto none = std::vector<gxi_xschem_shown_t>{};
    const auto seen =
        gxi_xschem_dress(placed, line, is_leaf, line == 0 ? shown : none, instance, sheet);
    // The nets of all bits of a node, over all instances of the vector.
    std::vector<gxi_xschem_bundle_t> on_node;
    for (const auto& node : device.nodes) {
      if (node.pin >= 0)
        on_node.push_back(gx_at(nets.bundles, gx_at(nets.bundle_of_pin[i], node.pin)));
      else
        on_node.push_back({nets.named(node.label, instance.source)});
    }
    std::vector<std::size_t> bits;
    for (const auto& node : device.nodes) bits.push_back(gxi_xschem_pin_names(placed, node).size());
    const bool several = placed.devices.size() > 1;
    for (std::size_t k = 0; k < placed.names.size(); ++k) {
      auto single = instance;
      single.name = (several ? device.prefix : "") + placed.names[k];
      single.deck = gxi_xschem_deck_line(placed, line, k, [&](std::size_t n, std::size_t bit) {
        const auto& around = on_node[n].around;
        return around.empty() ? "@" : around[(k * bits[n] + bit) % around.size()];
      });
      for (const auto& name : handed_[instance.symbol])
        if (single.deck.find(" " + name + "=") == std::string::npos)
          single.deck += " " + name + "=" + gxi_xschem_whole_value(placed, name);
      if (k == 0) single.properties = seen;
      for (std::size_t n = 0; n < on_node.size(); ++n)
        for (std::size_t bit = 0; bit < bits[n]; ++bit)
          single.nets.push_back(on_node[n].nets[(k * bits[n] + bit) % on_node[n].nets.size()]);
      sheet.instances.push_back(std::move(single));
    }
  }

  // A port hides the global of its name within the cell, as in a subcircuit: what draws the global
  // is only drawn.
  void hide_globals(gxi_sheet_t& sheet) {
    const auto hidden = [&](const gxi_instance_t& instance) {
      return instance.kind == gxi_kind::global && !instance.nets.empty() &&
             !gx_at(sheet.nets, instance.nets.front()).port.empty();
    };
    for (const auto& instance : sheet.instances) {
      if (!hidden(instance)) continue;
      gxm_complain(design_.warnings, instance.source,
                   instance.name + " is a port here, which hides the global of that name");
      gxi_draw_apart(cell(instance.symbol).symbol, instance, sheet);
      if (instance.name_look) sheet.texts.push_back({instance.name, *instance.name_look});
    }
    std::erase_if(sheet.instances, hidden);
    for (auto& net : sheet.nets)
      if (!net.port.empty()) net.global.clear();
  }

  // --- the whole design
  void declare_globals() {
    globals_.insert("0");
    for (auto& one : design_.cells)
      if (one.sheet)
        for (auto& net : one.sheet->nets)
          if (net.port.empty() && net.global.empty() && globals_.contains(gx_upper(net.name)))
            net.global = net.name;
  }

  const gxi_input_t& input_;
  gxi_design_t design_;
  gxi_xschem_library_t library_;
  gxi_hierarchy_t hierarchy_{design_};
  gxi_text_devices_t text_devices_{design_};
  std::set<std::string> globals_;
  // Names in the lines of the netlist: attributes of parts, those that blocks hand down, parameters
  // that are more than an attribute, and what is a node or a part of a name.
  std::set<std::string> of_parts_{std::string(gxi_spice_model), "value"}, parameters_, composed_;
  std::set<std::string> used_up_;
  std::set<std::string> models_;                 // device_model of all
  std::map<int, std::set<std::string>> handed_;  // by cell: what take_parameters found
  bool has_noconn_ = false;
};

}  // namespace

gxi_design_t gxi_read_xschem(const gxi_input_t& input) { return xschem_reader(input).run(); }

bool gxi_is_xschem(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos || first + 1 >= text.size()) return false;
  const char kind = text[first];
  const auto next = text.find_first_not_of(' ', first + 1);
  return (kind == 'v' || kind == 'G' || kind == 'K') && next != std::string_view::npos &&
         text[next] == '{';
}
