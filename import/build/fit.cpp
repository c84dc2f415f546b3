// Names, texts and the objects that only a GX sheet needs.
#include "import/build/fit.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <unordered_set>
#include <utility>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "gx/text/characters.h"
#include "gx/text/kept_text.h"
#include "gx/text/spelling.h"
#include "gx/text/strings.h"
#include "import/build/turned_texts.h"
#include "import/drawing/fill.h"
#include "import/drawing/names.h"
#include "import/drawing/placement.h"

namespace {

constexpr std::size_t longest_name = 63, longest_value = gxi_longest_value, longest_directory = 60;

class fitter {
 public:
  explicit fitter(gxi_design_t& design) : design_(design) {}

  void run() {
    const std::size_t described = design_.cells.size();
    for (auto& cell : design_.cells)
      if (cell.sheet && cell.symbol.pins.empty() && cell.symbol.shapes.empty()) draw_symbol(cell);
    gxi_hand_out_texts(design_);
    pin_names_.resize(described);
    for (std::size_t i = 0; i < described; ++i) fit_symbol(i);
    for (auto* const kept :
         {&design_.kept_of_instances, &design_.kept_of_pins, &design_.kept_of_nets})
      for (auto& name : *kept) name.resize(std::min(name.size(), longest_name));
    for (std::size_t i = 0; i < described; ++i)
      if (design_.cells[i].sheet) fit_sheet(i);
    std::move(undrawn_cells_.begin(), undrawn_cells_.end(), std::back_inserter(design_.cells));
    name_cells();
  }

 private:
  void warn(const gxm_source_t& source, const std::string& what) {
    gxm_complain(design_.warnings, source, what);
  }

  // A box with the ports of the sheet, inputs on the left, the others on the right.
  void draw_symbol(gxi_cell_t& cell) {
    std::int32_t left = 0, right = 0;
    std::unordered_set<std::string> drawn;
    constexpr std::int32_t width = 6 * gxm_step, lead = 2 * gxm_step;
    auto& symbol = cell.symbol;
    for (const auto& net : cell.sheet->nets) {
      if (net.port.empty() || !drawn.insert(net.port).second) continue;
      const bool in = net.port_type == "IN";
      auto& row = in ? left : right;
      row += 2 * gxm_step;
      const gx_pointreal_t at{in ? -width - lead : width + lead, row};
      const gx_pointreal_t edge{in ? -width : width, row};
      symbol.shapes.push_back({.type = gx_type::line_2d, .points = {at, edge}});
      gxi_look_t look{.at = {edge.x + (in ? 1000 : -1000), row}, .up = gxi_align::middle};
      if (!in) look.across = gxi_align::end;
      symbol.pins.push_back({.name = net.port, .type = net.port_type, .at = at, .name_look = look});
    }
    symbol.shapes.push_back(
        {.type = gx_type::rectangle_2d,
         .points = {{-width, 0}, {width, std::max(left, right) + 2 * gxm_step}}});
    symbol.texts.push_back({cell.name, {.at = {-width, -1000}}});
  }

  // --- texts
  std::string fit_text(const std::string& text, std::size_t longest, const gxm_source_t& source,
                       std::string_view what) {
    std::string result = gx_ascii(text);
    std::replace(result.begin(), result.end(), '\n', ' ');
    if (result.size() > longest) {
      warn(source, std::string(what) + " is cut at " + std::to_string(longest) +
                       " characters: " + result.substr(0, 40) + "...");
      result.resize(longest);
    }
    return result;
  }

  // A value, with its signs where they have room.
  std::string fit_value(const std::string& text, const gxm_source_t& source,
                        std::string_view what) {
    std::string kept = gx_kept_text(text);
    std::replace(kept.begin(), kept.end(), '\n', ' ');
    return kept.size() > longest_value ? fit_text(text, longest_value, source, what) : kept;
  }

  // A name of the netlist: spelled, and cut where it is too long.
  std::string fit_name(const std::string& drawn, const gxm_source_t& source,
                       std::string_view what) {
    std::string name = gx_spelled_name(drawn);
    if (name.size() > longest_value) {
      warn(source, std::string(what) + " is cut at " + std::to_string(longest_value) +
                       " characters: " + name.substr(0, 40) + "...");
      name.resize(longest_value);
    }
    return name;
  }

  // A name that is spelled otherwise than drawn is a text of the sheet, as it was drawn.
  static void show_as_drawn(const std::string& drawn, const std::string& name,
                            std::optional<gxi_look_t>& look, gxi_sheet_t& sheet) {
    std::string seen;
    int bars = 0;
    for (const char c : drawn) {
      const bool opens = c == '{' && seen.ends_with('~'), closes = c == '}' && bars > 0;
      bars += opens - closes;
      if (!opens && !closes) seen += c;
    }
    if (!look || seen == name) return;
    sheet.texts.push_back({gx_kept_text(seen), *look});
    look.reset();
  }

  void fit_properties(std::vector<gxi_property_t>& properties, const gxm_source_t& source,
                      gxi_names_t& taken) {
    for (auto& property : properties) {
      property.name =
          taken.take(fit_text(property.name, longest_name, source, "a name"), longest_name);
      property.value = fit_value(property.value, source, "the value of " + property.name);
    }
    std::erase_if(properties, [](const auto& property) { return property.name.empty(); });
  }
  void fit_properties(std::vector<gxi_property_t>& properties, const gxm_source_t& source) {
    gxi_names_t taken;
    fit_properties(properties, source, taken);
  }

  void fit_symbol(std::size_t cell) {
    auto& symbol = design_.cells[cell].symbol;
    gxi_fill_with_boxes(symbol.shapes);
    for (auto& text : symbol.texts) text.value = gx_kept_text(text.value);
    gxi_names_t properties;
    fit_properties(symbol.properties, symbol.source, properties);
    fit_properties(symbol.defaults, symbol.source, properties);
    gxi_names_t taken;
    for (auto& pin : symbol.pins) {
      const std::string drawn = pin.name;
      pin.name = fit_name(pin.name, symbol.source, "the name of a pin");
      pin.name = taken.take(pin.name.empty() ? "P" : pin.name, longest_value);
      pin_names_[cell].emplace(drawn, pin.name);
      fit_properties(pin.properties, symbol.source);
    }
  }

  // --- sheets
  void fit_sheet(std::size_t cell) {
    here_ = cell;
    auto& sheet = *design_.cells[cell].sheet;
    gxi_fill_with_boxes(sheet.shapes);
    for (auto& text : sheet.texts) text.value = gx_kept_text(text.value);
    place_undrawn_below(sheet);
    // Names of their own first, so that those come through unchanged.
    for (auto& net : sheet.nets) fit_net(net, sheet);
    tell_lost_ports();
    fit_instances(sheet);
    said_.assign(sheet.nets.size(), {});
    for (auto& instance : sheet.instances) note_said(instance);
    for (std::size_t i = 0; i < sheet.nets.size(); ++i) add_undrawn(sheet, static_cast<int>(i));
    for (auto& instance : sheet.instances)
      for (auto& net : instance.nets)
        if (net < 0) {
          net = static_cast<int>(sheet.nets.size());
          sheet.nets.push_back({.source = instance.source});
        }
    net_names_ = gxi_names_t();
  }

  void fit_net(gxi_net_t& net, gxi_sheet_t& sheet) {
    fit_properties(net.properties, net.source);
    if (!net.name.empty()) {
      const std::string drawn = net.name, name = fit_name(drawn, net.source, "the name of a net");
      show_as_drawn(drawn, name, net.name_look, sheet);
      net.name = net_names_.take(name, longest_value);
      if (net.name != name)
        warn(net.source, "a second net " + name + " (letter case ignored) becomes " + net.name);
    }
    net.global = fit_name(net.global, net.source, "the name of a global");
    if (net.port.empty()) return;
    const auto pin = pin_names_[here_].find(net.port);
    if (pin == pin_names_[here_].end()) {
      lost_ports_.push_back({net.source, net.port});
      net.port.clear();
    } else {
      net.port = pin->second;
    }
  }

  // Where the sheet is in use, each one; of the top, which is in no other sheet, all at once.
  void tell_lost_ports() {
    const std::string of = " of the symbol of " + design_.cells[here_].name;
    if (lost_ports_.size() > 1 && here_ == static_cast<std::size_t>(design_.top)) {
      std::string names;
      for (const auto& [source, port] : lost_ports_) names += (names.empty() ? "" : ", ") + port;
      warn(lost_ports_.front().first, "ports are no pins" + of + ": " + names);
    } else {
      for (const auto& [source, port] : lost_ports_)
        warn(source, "port " + port + " is no pin" + of);
    }
    lost_ports_.clear();
  }

  void fit_instances(gxi_sheet_t& sheet) {
    gxi_names_t taken;
    std::vector<gxi_instance_t> kept;
    for (auto& instance : sheet.instances) {
      auto& symbol = gx_at(design_.cells, instance.symbol).symbol;
      instance.nets.resize(symbol.pins.size(), -1);
      fit_properties(instance.properties, instance.source);
      if (instance.kind == gxi_kind::port) {
        const auto pin = pin_names_[here_].find(instance.name);
        if (pin == pin_names_[here_].end()) {
          if (instance.name_look)
            sheet.texts.push_back({gx_kept_text(instance.name), *instance.name_look});
          gxi_draw_apart(symbol, instance, sheet);
          continue;
        }
        instance.name = pin->second;
        classify(symbol, "PORTIO");
      } else {
        const std::string drawn = instance.name;
        instance.name = fit_name(drawn, instance.source, "a name");
        show_as_drawn(drawn, instance.name, instance.name_look, sheet);
        if (instance.kind == gxi_kind::global) classify(symbol, "G");
      }
      if (instance.kind == gxi_kind::part && !instance.name.empty()) {
        const std::string unique = taken.take(instance.name, longest_value);
        if (unique != instance.name)
          warn(instance.source, "a second instance " + instance.name + " becomes " + unique);
        instance.name = unique;
      }
      kept.push_back(std::move(instance));
    }
    sheet.instances = std::move(kept);
  }

  static void classify(gxi_symbol_t& symbol, std::string_view value) {
    const bool has = std::any_of(symbol.properties.begin(), symbol.properties.end(),
                                 [](const auto& p) { return gx_iden(p.name, "CLASS"); });
    if (!has) symbol.properties.push_back({"CLASS", std::string(value), {}});
  }

  // --- ports and globals that no instance says
  struct said_t {
    bool port = false, global = false;
  };

  void note_said(const gxi_instance_t& instance) {
    if (instance.kind == gxi_kind::part || instance.nets.empty() || instance.nets[0] < 0) return;
    auto& said = gx_at(said_, instance.nets[0]);
    (instance.kind == gxi_kind::port ? said.port : said.global) = true;
  }

  void add_undrawn(gxi_sheet_t& sheet, int net_index) {
    const auto& net = gx_at(sheet.nets, net_index);
    const auto& said = gx_at(said_, net_index);
    if (!net.port.empty() && !said.port)
      add_instance(sheet, gxi_kind::port, net.port, net_index,
                   net.port_type == "IN"    ? "PORTIN"
                   : net.port_type == "OUT" ? "PORTOUT"
                                            : "PORTIO");
    if (!net.global.empty() && !said.global)
      add_instance(sheet, gxi_kind::global, net.global, net_index, "G");
  }

  void add_instance(gxi_sheet_t& sheet, gxi_kind kind, const std::string& name, int net,
                    const std::string& class_name) {
    gxi_instance_t instance;
    instance.kind = kind;
    instance.name = name;
    instance.symbol = undrawn_symbol(class_name);
    instance.source = gx_at(sheet.nets, net).source;
    instance.at = next_undrawn_;
    next_undrawn_.x += gxm_step;
    instance.nets = {net};
    sheet.instances.push_back(std::move(instance));
  }

  // A pin and nothing else.
  int undrawn_symbol(const std::string& class_name) {
    const auto [found, is_new] = undrawn_.emplace(
        class_name, static_cast<int>(design_.cells.size() + undrawn_cells_.size()));
    if (is_new) {
      auto& cell = undrawn_cells_.emplace_back();
      cell.name = class_name == "G" ? "global" : "port_" + class_name.substr(4);
      cell.symbol.name = cell.name;
      cell.symbol.pins.push_back({.name = "P"});
      cell.symbol.properties.push_back({"CLASS", class_name, {}});
    }
    return found->second;
  }

  void place_undrawn_below(const gxi_sheet_t& sheet) {
    gx_boundsreal_t box = gx_empty_bounds;
    for (const auto& instance : sheet.instances) gx_include(box, instance.at);
    for (const auto& net : sheet.nets)
      for (const auto& segment : net.segments) {
        gx_include(box, segment.from);
        gx_include(box, segment.to);
      }
    if (gx_bounds_empty(box)) box = {0, 0, 0, 0};
    const auto on_grid = [](std::int32_t v) { return v / gxm_step * gxm_step; };
    next_undrawn_ = {on_grid(box.xmin), on_grid(box.ymax) + 4 * gxm_step};
  }

  // --- cells: the top keeps its name, the others in their order
  void name_cells() {
    gxi_names_t taken('_');
    const auto name = [&](gxi_cell_t& cell) {
      const auto drawn = cell.name;
      cell.name = taken.take(gxi_directory_name(cell.name), longest_directory);
      const auto& source = cell.sheet ? cell.sheet->source : cell.symbol.source;
      if (cell.name != drawn && !source.file.empty())
        warn(source, "the cell " + drawn + " becomes " + cell.name);
    };
    const auto top = static_cast<std::size_t>(design_.top);
    name(design_.cells[top]);
    for (std::size_t i = 0; i < design_.cells.size(); ++i)
      if (i != top) name(design_.cells[i]);
  }

  gxi_design_t& design_;
  std::vector<std::map<std::string, std::string>> pin_names_;  // by cell: as drawn, as kept
  std::size_t here_ = 0;
  std::vector<std::pair<gxm_source_t, std::string>> lost_ports_;  // of the sheet
  gxi_names_t net_names_;
  std::vector<said_t> said_;
  gx_pointreal_t next_undrawn_{};
  std::map<std::string, int> undrawn_;  // by CLASS: as they will be placed after the other cells
  std::vector<gxi_cell_t> undrawn_cells_;
};

}  // namespace

void gxi_fit(gxi_design_t& design) { fitter(design).run(); }
