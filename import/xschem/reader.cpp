// From the sheets of xschem to a drawing: cells, instances of vectors, ports, globals, pictures.
#include "import/xschem/reader.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/drawing/hierarchy.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/names.h"
#include "import/drawing/placement.h"
#include "import/drawing/text_devices.h"
#include "import/xschem/labels.h"
#include "import/xschem/nets.h"
#include "import/xschem/picture.h"
#include "import/xschem/signs.h"

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
    const gxi_xschem_symbol_t* symbol = nullptr;
    if (fs::is_regular_file(beside)) {
      symbol = &library_.symbol({.symbol = beside.string()}, top);
      cell(0).symbol = gxi_xschem_sign(*symbol);
    }
    read_sheet(0, symbol, top);
    declare_globals();
    gxi_keep_most_used(design_, std::move(uses_));
    return std::move(design_);
  }

 private:
  gxi_cell_t& cell(int index) { return gx_at(design_.cells, index); }

  // The sheet of a component, when it has one.
  std::optional<fs::path> sheet_of(const gxi_xschem_placed_t& placed, const fs::path& sheet) const {
    const auto& symbol = *placed.symbol;
    if (symbol.type != "subcircuit") return std::nullopt;
    const auto* named = placed.attributes.find("schematic");
    if (named == nullptr) named = symbol.attributes.find("schematic");
    if (named != nullptr && !named->empty()) {
      std::string name = *named;
      if (!fs::path(name).has_extension()) name += ".sch";
      if (auto found = library_.find(name, symbol.path.empty() ? sheet : symbol.path)) return found;
    }
    auto path = symbol.path;
    if (path.empty()) return library_.find(symbol.name + ".sch", sheet);
    path.replace_extension(".sch");
    return fs::is_regular_file(path) ? std::optional(path) : std::nullopt;
  }

  int cell_of(const gxi_xschem_placed_t& placed, const fs::path& sheet) {
    const auto below = sheet_of(placed, sheet);
    std::vector<fs::path> sheets;
    if (below) sheets.push_back(*below);
    const auto [index, is_new] =
        hierarchy_.cell(placed.symbol, below ? below->lexically_normal().string() : "", sheets,
                        {sheet.native(), placed.component->line});
    if (!is_new) return index;
    cell(index).name = below ? below->stem().string() : placed.symbol->name;
    cell(index).symbol = gxi_xschem_sign(*placed.symbol);
    if (below)
      read_sheet(index, placed.symbol, *below);
    else if (placed.symbol->role == gxi_xschem_role_t::device)
      cell(index).symbol.properties.push_back({"CLASS", gxi_xschem_class(*placed.symbol), {}});
    return index;
  }

  // --- sheets
  void read_sheet(int index, const gxi_xschem_symbol_t* symbol, const fs::path& path) {
    const auto level = hierarchy_.enter({&path, 1});
    const auto [records, file] = library_.read(path);
    std::vector<gxi_xschem_placed_t> placed;
    for (const auto& component : records.components)
      if (component.embedded) library_.symbol(component, path);
    for (const auto& component : records.components) placed.push_back(place(component, path, file));
    std::vector<const gxi_xschem_shape_t*> wires;
    for (const auto& shape : records.shapes)
      if (shape.kind == 'N') wires.push_back(&shape);
    auto nets = gxi_xschem_join(placed, wires, file, design_.warnings);

    gxi_sheet_t sheet;
    sheet.source = {file, 1};
    draw(records, sheet);
    for (std::size_t i = 0; i < placed.size(); ++i) add(sheet, placed[i], i, nets, path, file);
    // Nodes that a symbol's line names beside its pins are pins of the cell, too.
    if (symbol != nullptr && symbol->role == gxi_xschem_role_t::device)
      for (const auto& node : symbol->nodes)
        if (node.pin < 0) {
          const auto found = nets.by_name.find(gx_upper(node.name));
          if (found != nets.by_name.end()) gx_at(nets.nets, found->second).port = node.name;
        }
    for (std::size_t i = 0; i < wires.size(); ++i) draw_wire(*wires[i], nets, i);
    std::string text = records.spice + "\n";
    for (const auto& component : placed)
      if (says_netlist(component, index == 0)) text += std::string(component.value("value")) + "\n";
    if (text.find_first_not_of(" \n\t") != std::string::npos) {
      text_devices_.add(text, sheet, [&](const std::string& node) {
        return nets.named(node, sheet.source).front();
      });
      cell(index).notes = std::move(text);
    }
    sheet.nets = std::move(nets.nets);
    cell(index).sheet = std::move(sheet);
  }

  static bool says_netlist(const gxi_xschem_placed_t& component, bool is_top) {
    if (component.symbol->type != "netlist_commands" || component.ignored) return false;
    const auto simulator = component.value("simulator");
    const auto only_top = component.value("only_toplevel");
    return (simulator.empty() || simulator == "ngspice") && (is_top || only_top != "true");
  }

  gxi_xschem_placed_t place(const gxi_xschem_component_t& component, const fs::path& path,
                            std::string_view file) {
    gxi_xschem_placed_t placed;
    placed.component = &component;
    placed.symbol = &library_.symbol(component, path);
    placed.attributes = gxi_xschem_attributes_t(component.attributes);
    if (placed.symbol->missing)
      gxm_complain(design_.warnings, {file, component.line},
                   "symbol " + component.symbol + " is not found; its pins are not joined");
    std::string ignore(placed.value("spice_ignore"));
    if (ignore.empty() || ignore == "0") ignore = placed.symbol->attributes.get("spice_ignore");
    placed.shorted = ignore == "short";
    placed.ignored = !placed.shorted && !ignore.empty() && ignore != "0" && ignore != "false";
    placed.names = gxi_xschem_bits(placed.value("name"));
    const auto instance = gxi_xschem_instance(component, file);
    for (const auto& pin : placed.symbol->pins)
      placed.pins.push_back(gxi_on_sheet(instance, gxi_xschem_point(pin.at)));
    return placed;
  }

  static void draw(const gxi_xschem_file_t& records, gxi_sheet_t& sheet) {
    gxm_shape_t drawn;
    for (const auto& shape : records.shapes)
      if (gxi_xschem_shape(shape, drawn)) sheet.shapes.push_back(drawn);
    for (const auto& text : records.texts)
      if (gxi_xschem_attributes_t(text.attributes).get("hide") != "true" &&
          text.text.rfind("tcleval(", 0) != 0)
        sheet.texts.push_back({text.text, gxi_xschem_look(text)});
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
           gxi_xschem_nets_t& nets, const fs::path& path, std::string_view file) {
    gxi_instance_t instance = gxi_xschem_instance(*placed.component, file);
    const auto shown = gxi_xschem_shown(placed.symbol->records, false, [&](std::string_view name) {
      return gxi_xschem_value(placed, name, file);
    });
    const auto role = placed.symbol->role;
    const bool takes_part = !placed.ignored && !placed.shorted && !placed.symbol->missing;
    if (role == gxi_xschem_role_t::device && takes_part) {
      add_device(sheet, placed, i, nets, path, std::move(instance), shown);
      return;
    }
    if ((role == gxi_xschem_role_t::label || role == gxi_xschem_role_t::port) && takes_part &&
        !nets.bundle_of_pin[i].empty() && nets.names_its_net[i] &&
        add_label(sheet, placed, i, nets, path, instance, shown))
      return;
    gxi_xschem_draw(placed, shown, instance, sheet);
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
    if (placed.symbol->role == gxi_xschem_role_t::label) {
      if (!global) return false;
      for (const auto& name : names) globals_.insert(gx_upper(name));
      if (names.size() > 1) return false;
    }
    instance.kind =
        placed.symbol->role == gxi_xschem_role_t::port ? gxi_kind::port : gxi_kind::global;
    instance.symbol = cell_of(placed, path);
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

  void add_device(gxi_sheet_t& sheet, const gxi_xschem_placed_t& placed, std::size_t i,
                  gxi_xschem_nets_t& nets, const fs::path& path, gxi_instance_t instance,
                  const std::vector<gxi_xschem_shown_t>& shown) {
    instance.symbol = cell_of(placed, path);
    const auto seen = gxi_xschem_dress(placed, shown, instance, sheet);
    for (const auto& property : instance.properties) ++uses_[property.name];
    // The nets of all bits of a node, over all instances of the vector.
    std::vector<std::vector<int>> nets_of_node;
    for (const auto& node : placed.symbol->nodes) {
      if (node.pin >= 0) {
        nets_of_node.push_back(gx_at(nets.bundles, gx_at(nets.bundle_of_pin[i], node.pin)).nets);
      } else {
        const auto label = gxi_xschem_substitute(node.text, [&](std::string_view name) {
          return gxi_xschem_value(placed, name, instance.source.file);
        });
        nets_of_node.push_back(label.empty() ? std::vector<int>{-1}
                                             : nets.named(label, instance.source));
      }
    }
    for (std::size_t k = 0; k < placed.names.size(); ++k) {
      auto single = instance;
      single.name = placed.names[k];
      if (k == 0) single.properties = seen;
      for (std::size_t n = 0; n < nets_of_node.size(); ++n) {
        const auto& node = placed.symbol->nodes[n];
        const auto bits = node.pin >= 0 ? gx_at(placed.symbol->pins, node.pin).bits.size() : 1;
        for (std::size_t bit = 0; bit < bits; ++bit)
          single.nets.push_back(nets_of_node[n][(k * bits + bit) % nets_of_node[n].size()]);
      }
      sheet.instances.push_back(std::move(single));
    }
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
  std::map<std::string, int> uses_;
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
