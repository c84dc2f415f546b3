// Moving instances of a sheet into cells of their own, until what is left fits.
#include "import/division.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "import/builder.h"

namespace {

constexpr std::size_t most_objects = 29000;  // of the 30,000 that a file holds
constexpr std::size_t part_objects = 24000;  // of a part, before its ports
constexpr std::int32_t pin_step = gxm_step;

std::size_t objects_of(const gxi_design_t& design, const gxi_instance_t& instance) {
  const auto& symbol = design.cells[static_cast<std::size_t>(instance.symbol)].symbol;
  return 4 + instance.properties.size() + symbol.defaults.size() + symbol.pins.size();
}

// A symbol is on a sheet once, however many instances it has.
std::size_t objects_of(const gxi_symbol_t& symbol) {
  return 6 + symbol.shapes.size() + symbol.texts.size() + symbol.properties.size() +
         3 * symbol.pins.size();
}

class divider {
 public:
  divider(gxi_design_t& design, int cell) : design_(design), cell_(cell) {}

  void run() {
    auto sheet = std::move(*design_.cells[static_cast<std::size_t>(cell_)].sheet);
    std::size_t parts = 0;
    std::vector<gxi_instance_t> stay;
    std::size_t size = 0;
    // Ports and globals stay; the others leave in their order.
    std::vector<std::vector<gxi_instance_t>> chunks;
    std::vector<bool> counted(sheet.nets.size());
    for (auto& instance : sheet.instances) {
      if (instance.kind != gxi_kind::part) {
        stay.push_back(std::move(instance));
        continue;
      }
      const auto here = objects_of(design_, instance);
      if (chunks.empty() || size + here > part_objects) {
        chunks.emplace_back();
        size = 0;
      }
      size += here + 4;  // and a port for about every net
      for (const int net : instance.nets) {
        if (net < 0 || counted[static_cast<std::size_t>(net)]) continue;
        counted[static_cast<std::size_t>(net)] = true;
        size += 3 * sheet.nets[static_cast<std::size_t>(net)].segments.size();
      }
      chunks.back().push_back(std::move(instance));
    }
    std::vector<int> last_chunk(sheet.nets.size(), -1);
    std::vector<bool> shared(sheet.nets.size());
    for (std::size_t i = 0; i < sheet.nets.size(); ++i)
      shared[i] = !sheet.nets[i].port.empty() || !sheet.nets[i].global.empty();
    for (std::size_t c = 0; c < chunks.size(); ++c)
      for (const auto& instance : chunks[c])
        for (const int net : instance.nets) {
          if (net < 0) continue;
          auto& last = last_chunk[static_cast<std::size_t>(net)];
          if (last >= 0 && last != static_cast<int>(c))
            shared[static_cast<std::size_t>(net)] = true;
          last = static_cast<int>(c);
        }
    gx_pointreal_t at{0, 0};
    for (const auto& instance : stay) at.y = std::max(at.y, instance.at.y);
    at.y += 20 * gxm_step;
    const std::string name = design_.cells[static_cast<std::size_t>(cell_)].name;
    for (auto& chunk : chunks) {
      auto instance = make_part(name, ++parts, std::move(chunk), sheet, shared);
      instance.at = at;
      at.x += 30 * gxm_step;
      stay.push_back(std::move(instance));
    }
    // Nets that went into a part as a whole have nothing left here.
    sheet.instances = std::move(stay);
    for (std::size_t i = 0; i < sheet.nets.size(); ++i)
      if (!shared[i] && last_chunk[i] >= 0) sheet.nets[i] = {.source = sheet.nets[i].source};
    gxm_complain(design_.warnings, sheet.source,
                 "the sheet of " + name + " would hold more objects than a file can: its " +
                     "instances are in " + std::to_string(parts) + " parts of one more level");
    design_.cells[static_cast<std::size_t>(cell_)].sheet = std::move(sheet);
  }

 private:
  gxi_instance_t make_part(const std::string& of, std::size_t number,
                           std::vector<gxi_instance_t> instances, const gxi_sheet_t& whole,
                           const std::vector<bool>& shared) {
    gxi_cell_t part;
    part.name = of + "_part" + std::to_string(number);
    part.symbol.name = part.name;
    part.symbol.source = whole.source;
    gxi_sheet_t sheet;
    sheet.source = whole.source;
    gxi_instance_t instance;
    instance.name = "part" + std::to_string(number);
    instance.symbol = static_cast<int>(design_.cells.size());
    instance.source = whole.source;
    std::map<int, int> net_here;
    for (auto& moved : instances)
      for (int& net : moved.nets) {
        if (net < 0) continue;
        const auto [found, is_new] = net_here.emplace(net, static_cast<int>(sheet.nets.size()));
        if (is_new) {
          const auto& outer = whole.nets[static_cast<std::size_t>(net)];
          gxi_net_t inner{.name = outer.name, .source = outer.source};
          if (shared[static_cast<std::size_t>(net)]) {
            inner.port = outer.name.empty() ? "NET" + std::to_string(net) : outer.name;
            add_pin(part.symbol, inner.port);
            instance.nets.push_back(net);
          } else {
            inner = outer;  // with its wires
          }
          sheet.nets.push_back(std::move(inner));
        }
        net = found->second;
      }
    add_ports(sheet);
    std::move(instances.begin(), instances.end(), std::back_inserter(sheet.instances));
    part.sheet = std::move(sheet);
    const auto rows = static_cast<std::int32_t>(part.symbol.pins.size() / 20 + 1);
    part.symbol.shapes.push_back(
        {.type = gx_type::rectangle_2d,
         .points = {{-pin_step, -pin_step}, {21 * pin_step, (rows + 1) * pin_step}}});
    part.symbol.texts.push_back({part.name, {.at = {0, -pin_step - 1000}}});
    design_.cells.push_back(std::move(part));
    return instance;
  }

  static void add_pin(gxi_symbol_t& symbol, const std::string& name) {
    const auto i = static_cast<std::int32_t>(symbol.pins.size());
    symbol.pins.push_back({.name = name, .at = {i % 20 * pin_step, i / 20 * pin_step}});
  }

  // In rows above the instances.
  void add_ports(gxi_sheet_t& sheet) {
    std::int32_t count = 0;
    for (std::size_t i = 0; i < sheet.nets.size(); ++i) {
      if (sheet.nets[i].port.empty()) continue;
      gxi_instance_t port;
      port.kind = gxi_kind::port;
      port.name = sheet.nets[i].port;
      port.symbol = port_symbol();
      port.source = sheet.source;
      port.at = {count % 100 * pin_step, -(count / 100 + 4) * pin_step};
      port.nets = {static_cast<int>(i)};
      sheet.instances.push_back(std::move(port));
      ++count;
    }
  }

  int port_symbol();

  gxi_design_t& design_;
  int cell_;
};

// One for all parts of a design; it stands among the cells before the parts.
int divider::port_symbol() {
  for (std::size_t i = 0; i < design_.cells.size(); ++i)
    if (design_.cells[i].name == "part_port") return static_cast<int>(i);
  return 0;
}

}  // namespace

std::size_t gxi_count_objects(const gxi_design_t& design, const gxi_cell_t& cell) {
  std::size_t count = 16 + cell.sheet->shapes.size() + 2 * cell.sheet->texts.size();
  std::vector<bool> used(design.cells.size());
  for (const auto& instance : cell.sheet->instances) {
    count += objects_of(design, instance);
    used[static_cast<std::size_t>(instance.symbol)] = true;
  }
  for (std::size_t i = 0; i < used.size(); ++i)
    if (used[i]) count += objects_of(design.cells[i].symbol);
  for (const auto& net : cell.sheet->nets) count += 3 + 3 * net.segments.size();
  return count;
}

void gxi_divide(gxi_design_t& design) {
  std::vector<int> too_big;
  for (std::size_t i = 0; i < design.cells.size(); ++i)
    if (design.cells[i].sheet && gxi_count_objects(design, design.cells[i]) > most_objects)
      too_big.push_back(static_cast<int>(i));
  if (too_big.empty()) return;
  gxi_cell_t port;
  port.name = port.symbol.name = "part_port";
  port.symbol.pins.push_back({.name = "P"});
  port.symbol.properties.push_back({"CLASS", "PORTIO", {}});
  design.cells.push_back(std::move(port));
  for (const int cell : too_big) divider(design, cell).run();
}
