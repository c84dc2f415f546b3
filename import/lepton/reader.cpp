// From the pages of Lepton EDA to a drawing: sheets, cells, ports, what is common to the design.
#include "import/lepton/reader.h"

#include <algorithm>
#include <set>
#include <span>

#include "gx/text/at.h"
#include "import/drawing/hierarchy.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/placement.h"
#include "import/drawing/source_file.h"
#include "import/lepton/commons.h"
#include "import/lepton/deck_lines.h"
#include "import/lepton/nets.h"
#include "import/lepton/pages.h"
#include "import/lepton/picture.h"
#include "import/lepton/signs.h"

namespace {

namespace fs = std::filesystem;

class lepton_reader {
 public:
  explicit lepton_reader(const gxi_input_t& input) : input_(input), library_(input, design_) {}

  gxi_design_t run() {
    std::vector<fs::path> pages;
    for (const auto& page : input_.pages) pages.push_back(fs::absolute(page).lexically_normal());
    design_.cells.emplace_back().name = pages.front().stem().string();
    read_sheet(0, nullptr, pages);
    commons_.names.resize(design_.cells.size());
    gxi_share_names(design_, commons_);
    gxi_make_overridden_defaults(design_);
    gxi_keep_most_used(design_, {{"value", "device", "model"}}, {});
    design_.kept_of_pins = {"pinlabel"};
    return std::move(design_);
  }

 private:
  // Ports of a cell by the pins of its block, and which pins are joined within.
  struct block_t {
    std::vector<std::pair<std::size_t, std::size_t>> joined{};
  };

  gxi_cell_t& cell(int index) { return gx_at(design_.cells, index); }
  void warn(const gxm_source_t& source, const std::string& what) {
    gxm_complain(design_.warnings, source, what);
  }

  // --- cells
  int cell_of(const gxi_lepton_placed_t& placed) {
    std::span<const fs::path> sheets;
    if (placed.role == gxi_lepton_role_t::block) sheets = placed.sheets;
    const auto [index, is_new] =
        hierarchy_.cell(placed.symbol, gxi_lepton_sign_key(placed), sheets, placed.source());
    if (!is_new) return index;
    auto& made = cell(index);
    made.name = placed.role == gxi_lepton_role_t::block ? placed.sheets.front().stem().string()
                                                        : placed.symbol->name;
    made.symbol = gxi_lepton_sign(placed);
    if (placed.role == gxi_lepton_role_t::block) read_sheet(index, &placed, placed.sheets);
    return index;
  }

  // --- sheets
  void read_sheet(int index, const gxi_lepton_placed_t* block, const std::vector<fs::path>& paths) {
    const auto level = hierarchy_.enter(paths);
    std::vector<gxi_lepton_page_t> pages;
    for (const auto& path : paths) {
      const auto& read = library_.read(path);
      auto& page = pages.emplace_back();
      page.records = read.records.get();
      page.file = read.name;
      for (const auto& component : read.records->components)
        page.placed.push_back(gxi_lepton_place(library_, component, page.file, design_.warnings));
    }
    if (!gxi_lay_out(pages))
      gxi_refuse({paths.front().native(), 1}, "its pages are too large for one sheet");

    gxi_sheet_t sheet;
    sheet.source = {pages.front().file, 1};
    std::vector<gxi_lepton_placed_t> placed;
    std::vector<gxi_lepton_wire_t> wires;
    for (auto& page : pages) {
      draw(page, sheet);
      for (const auto& net : page.records->nets) wires.push_back({&net, page.file, page.shift});
      std::move(page.placed.begin(), page.placed.end(), std::back_inserter(placed));
    }
    if (block != nullptr) find_ports(*block, placed);
    std::vector<int> cells;
    gxi_lepton_joined_t joined;
    for (const auto& one : placed) {
      cells.push_back(has_cell(one) ? cell_of(one) : -1);
      joined.push_back(one.role == gxi_lepton_role_t::block ? blocks_[cells.back()].joined
                                                            : block_t{}.joined);
    }
    auto nets = gxi_lepton_join(placed, wires, joined, library_.project().netname_wins);
    std::vector<gxi_common_name_t> common;
    for (const auto& names : nets.names) common.push_back(common_name(index, names));
    const auto second = bring_in(placed, nets);
    for (std::size_t i = 0; i < placed.size(); ++i) {
      const bool as_instance = cells[i] >= 0 && !second[i] &&
                               (placed[i].role != gxi_lepton_role_t::power ||
                                is_shown_global(nets, common, nets.of_pin[i].front()));
      add(sheet, placed[i], i, as_instance ? cells[i] : -1, nets);
    }
    if (block != nullptr) summarize(index, *block, placed, nets);
    for (std::size_t i = 0; i < wires.size(); ++i) draw_wire(wires[i], i, nets, sheet);
    commons_.names.resize(std::max(commons_.names.size(), static_cast<std::size_t>(index) + 1));
    gx_at(commons_.names, index) = std::move(common);
    commons_.order.push_back(index);
    sheet.nets = std::move(nets.nets);
    for (auto& net : sheet.nets) net.name = gxi_lepton_name(net.name);
    if (index == 0) take_subcircuit(placed, nets.of_pin, sheet);
    cell(index).sheet = std::move(sheet);
  }

  // A power symbol stands for a net of the whole design when such nets are; else it is drawn.
  bool has_cell(const gxi_lepton_placed_t& placed) const {
    switch (placed.role) {
      case gxi_lepton_role_t::power:
        return !library_.project().net_is_local && placed.pins.size() == 1 &&
               placed.link_of(0) != nullptr;
      case gxi_lepton_role_t::port:
        return placed.pins.size() == 1;
      default:
        return placed.role != gxi_lepton_role_t::picture &&
               placed.role != gxi_lepton_role_t::noconn;
    }
  }

  // The first component whose name is the label of a pin brings that pin in.
  void find_ports(const gxi_lepton_placed_t& block, std::vector<gxi_lepton_placed_t>& placed) {
    std::set<std::string> found;
    for (const auto* pin : block.pins) {
      const std::string label(gxi_lepton_value(pin->attributes, "pinlabel"));
      if (label.empty() || !found.insert(label).second) continue;
      const auto port = std::find_if(placed.begin(), placed.end(), [&](const auto& one) {
        return (one.role == gxi_lepton_role_t::part || one.role == gxi_lepton_role_t::block) &&
               one.name == label;
      });
      if (port == placed.end() || port->pins.empty())
        warn(block.source(), "no component of the sheet " + block.sheets.front().string() +
                                 " has the name of the pin " + label);
      else
        port->role = gxi_lepton_role_t::port;
    }
  }

  // Ports give their nets their names; whether a component is a second one on its net.
  static std::vector<bool> bring_in(const std::vector<gxi_lepton_placed_t>& placed,
                                    gxi_lepton_nets_t& nets) {
    std::vector<bool> second(placed.size());
    for (std::size_t i = 0; i < placed.size(); ++i) {
      if (placed[i].role != gxi_lepton_role_t::port) continue;
      auto& net = gx_at(nets.nets, nets.of_pin[i].front());
      second[i] = !net.port.empty();
      if (second[i]) continue;
      net.port = gxi_lepton_name(placed[i].name);
      net.port_type = gxi_lepton_port_class(placed[i]).substr(4);
    }
    return second;
  }

  static bool is_shown_global(const gxi_lepton_nets_t& nets,
                              const std::vector<gxi_common_name_t>& common, int net) {
    const auto index = static_cast<std::size_t>(net);
    return common[index].always && nets.nets[index].port.empty();
  }

  void draw(const gxi_lepton_page_t& page, gxi_sheet_t& sheet) {
    for (const auto& shape : page.records->shapes) {
      for (auto& drawn : gxi_lepton_shapes(shape)) {
        for (auto& point : drawn.points) point = moved(point, page.shift);
        sheet.shapes.push_back(std::move(drawn));
      }
      if (shape.kind == 'G')
        warn({page.file, shape.line.number}, "a picture is left out: its frame is drawn");
    }
    for (const auto* const texts : {&page.records->texts, &page.records->attached})
      for (const auto& text : *texts) gxi_lepton_write(text, page.shift, sheet);
  }

  static gx_pointreal_t moved(gx_pointreal_t p, gxi_lepton_point_t shift) {
    const auto by = gxi_lepton_point(shift);
    return {p.x + by.x, p.y + by.y};
  }

  void draw_wire(const gxi_lepton_wire_t& wire, std::size_t i, gxi_lepton_nets_t& nets,
                 gxi_sheet_t& sheet) {
    const auto index = static_cast<std::size_t>(nets.of_wire[i]);
    auto& net = nets.nets[index];
    net.segments.push_back({moved(gxi_lepton_point(wire.net->from), wire.shift),
                            moved(gxi_lepton_point(wire.net->to), wire.shift),
                            gxi_lepton_color(wire.net->color), 1});
    for (const auto& text : wire.net->attributes) {
      const bool names_it = text.name() == "netname" && text.value() == net.name;
      if (names_it && !net.name_look && !gxi_lepton_seen(text).empty() &&
          text.show == gxi_lepton_text_t::show_t::value) {
        auto at = text;
        at.at = {text.at.x + wire.shift.x, text.at.y + wire.shift.y};
        net.name_look = gxi_lepton_look(at);
      } else {
        gxi_lepton_write(text, wire.shift, sheet);
      }
    }
  }

  void add(gxi_sheet_t& sheet, const gxi_lepton_placed_t& placed, std::size_t i, int cell_index,
           gxi_lepton_nets_t& nets) {
    gxi_instance_t instance;
    instance.source = placed.source();
    instance.at = moved(gxi_lepton_point(placed.component->at), placed.shift);
    instance.rotate = static_cast<std::uint8_t>(placed.component->rotate);
    instance.mirror = placed.component->mirror;
    const std::string name = gxi_lepton_name(placed.name);
    gxi_lepton_dress(placed, instance, sheet);
    if (placed.role == gxi_lepton_role_t::noconn)
      for (const int net : nets.of_pin[i])
        gx_at(nets.nets, net).properties.push_back({std::string(gxi_noconn), "1", {}});
    if (cell_index < 0) {
      if (instance.name_look) sheet.texts.push_back({name, *instance.name_look});
      gxi_draw_apart(gxi_lepton_sign(placed), instance, sheet);
      return;
    }
    instance.symbol = cell_index;
    instance.name = name;
    instance.nets = nets.of_pin[i];
    if (placed.role == gxi_lepton_role_t::port) instance.kind = gxi_kind::port;
    if (placed.role == gxi_lepton_role_t::power) instance.kind = gxi_kind::global;
    if (placed.role == gxi_lepton_role_t::part) {
      take_deck(placed, sheet, instance);
      instance.nets.insert(instance.nets.end(), nets.of_hidden[i].begin(), nets.of_hidden[i].end());
      instance.properties.insert(instance.properties.begin(),
                                 {"CLASS", gxi_lepton_class(placed), {}});
    }
    sheet.instances.push_back(std::move(instance));
  }

  // A further part of a package has a name of its own, in a deck with the slot it is in.
  void take_deck(const gxi_lepton_placed_t& placed, const gxi_sheet_t& sheet,
                 gxi_instance_t& instance) {
    const auto same = std::ranges::count(sheet.instances, instance.name, &gxi_instance_t::name);
    const std::string slot(gxi_lepton_value(placed.component->attributes, "slot"));
    const std::string part = !slot.empty() ? "." + slot
                             : same > 0    ? "~" + std::to_string(same + 1)
                                           : "";
    instance.deck = gxi_lepton_deck_lines(placed, instance.name + part);
    const auto file = gxi_lepton_model_file(placed);
    if (!file.empty() && model_files_.insert(file).second)
      cell(0).deck.definition += ".include " + file + "\n";
  }

  // The deck of a sheet that is a subcircuit of its own.
  void take_subcircuit(const std::vector<gxi_lepton_placed_t>& placed,
                       const std::vector<std::vector<int>>& nets_of_pins,
                       const gxi_sheet_t& sheet) {
    const auto line = gxi_lepton_subcircuit(placed, [&](std::size_t part) -> std::string_view {
      const auto& net = gx_at(sheet.nets, nets_of_pins[part].front());
      if (net.name.empty())
        warn(placed[part].source(), placed[part].name + " is a port, but its net has no name");
      return net.name;
    });
    if (line.empty()) return;
    cell(0).deck.header += line + "\n";
    cell(0).deck.end += ".ends\n";
  }

  // Pins of the block whose ports are on one net.
  void summarize(int index, const gxi_lepton_placed_t& block,
                 const std::vector<gxi_lepton_placed_t>& placed, const gxi_lepton_nets_t& nets) {
    std::map<int, std::size_t> first_on;
    for (std::size_t pin = 0; pin < block.pins.size(); ++pin)
      for (std::size_t i = 0; i < placed.size(); ++i) {
        if (placed[i].role != gxi_lepton_role_t::port ||
            placed[i].name != gxi_lepton_value(block.pins[pin]->attributes, "pinlabel"))
          continue;
        const auto [on, is_new] = first_on.emplace(nets.of_pin[i].front(), pin);
        if (!is_new) blocks_[index].joined.emplace_back(on->second, pin);
      }
  }

  // The name that a net has in the whole design: only its first one counts.
  gxi_common_name_t common_name(int index, const std::vector<gxi_lepton_name_t>& names) const {
    if (names.empty()) return {};
    const auto& project = library_.project();
    const auto& first = names.front();
    const bool as_link = first.of_link && !(project.netname_wins && first.of_wire);
    const bool is_local = as_link ? project.net_is_local : project.netname_is_local;
    gxi_common_name_t common{.is_named = true};
    if (index == 0 || !is_local) common.name = gxi_lepton_name(first.name);
    common.always = !is_local && (index != 0 || as_link);
    return common;
  }

  const gxi_input_t& input_;
  gxi_design_t design_;
  gxi_lepton_library_t library_;
  gxi_hierarchy_t hierarchy_{design_};
  std::map<int, block_t> blocks_;  // by cell
  gxi_commons_t commons_;
  std::set<std::string> model_files_;
};

}  // namespace

gxi_design_t gxi_read_lepton(const gxi_input_t& input) { return lepton_reader(input).run(); }

bool gxi_is_lepton(std::string_view text) {
  return text.size() > 2 && text[0] == 'v' && (text[1] == ' ' || text[1] == '\t') &&
         text[2] >= '0' && text[2] <= '9';
}
