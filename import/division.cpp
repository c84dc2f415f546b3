// Moving instances of a sheet into cells of their own, until what is left fits.
#include "import/division.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

#include "gx/text/at.h"
#include "import/builder.h"
#include "import/placement.h"

namespace {

constexpr std::size_t most_objects = 29000;   // of the 30,000 that a file holds
constexpr std::size_t part_objects = 24000;   // of a part, before its ports
constexpr std::size_t drawn_objects = 10000;  // of the pictures that stay in their place
constexpr std::int32_t pin_step = gxm_step;

std::size_t objects_of(const gxi_design_t& design, const gxi_instance_t& instance) {
  const auto& symbol = gx_at(design.cells, instance.symbol).symbol;
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
    auto sheet = std::move(*gx_at(design_.cells, cell_).sheet);
    const auto wires = wires_of_instances(sheet);
    const auto nb_of_parts = static_cast<std::size_t>(
        std::count_if(sheet.instances.begin(), sheet.instances.end(),
                      [](const auto& instance) { return instance.kind == gxi_kind::part; }));
    const std::size_t drawn = sheet.shapes.size() + 2 * sheet.texts.size();
    const bool divides_picture = drawn > drawn_objects && nb_of_parts > 0;
    const std::size_t share = divides_picture ? drawn / nb_of_parts + 1 : 0;
    std::size_t parts = 0;
    std::vector<gxi_instance_t> stay;
    std::size_t size = 0;
    // Ports and globals stay; the others leave in their order.
    std::vector<chunk_t> chunks;
    for (std::size_t i = 0; i < sheet.instances.size(); ++i) {
      auto& instance = sheet.instances[i];
      if (instance.kind != gxi_kind::part) {
        stay.push_back(std::move(instance));
        continue;
      }
      // A wire, its vertex, and about a port for every net.
      const auto here = objects_of(design_, instance) + 4 + 3 * wires[i].size() + share;
      if (chunks.empty() || size + here > part_objects) {
        chunks.emplace_back();
        size = 0;
      }
      size += here;
      auto& chunk = chunks.back();
      chunk.wires.insert(chunk.wires.end(), wires[i].begin(), wires[i].end());
      chunk.instances.push_back(std::move(instance));
    }
    std::vector<int> last_chunk(sheet.nets.size(), -1);
    std::vector<bool> shared(sheet.nets.size());
    for (std::size_t i = 0; i < sheet.nets.size(); ++i)
      shared[i] = !sheet.nets[i].port.empty() || !sheet.nets[i].global.empty();
    for (std::size_t c = 0; c < chunks.size(); ++c)
      for (const auto& instance : chunks[c].instances)
        for (const int net : instance.nets) {
          if (net < 0) continue;
          auto& last = gx_at(last_chunk, net);
          if (last >= 0 && last != static_cast<int>(c)) gx_at(shared, net) = true;
          last = static_cast<int>(c);
        }
    gx_pointreal_t at{0, 0};
    for (const auto& instance : stay) at.y = std::max(at.y, instance.at.y);
    at.y += 20 * gxm_step;
    const std::string name = gx_at(design_.cells, cell_).name;
    // What is drawn follows the instances in its order.
    std::size_t done = 0;
    for (auto& chunk : chunks) {
      if (divides_picture) {
        const auto before = std::exchange(done, done + chunk.instances.size());
        const auto take = [&](const auto& from, auto& to) {
          const auto begins = [&](std::size_t part) {
            return from.begin() + static_cast<std::ptrdiff_t>(from.size() * part / nb_of_parts);
          };
          to.assign(begins(before), begins(done));
        };
        take(sheet.shapes, chunk.shapes);
        take(sheet.texts, chunk.texts);
      }
      auto instance = make_part(name, ++parts, std::move(chunk), sheet, shared);
      instance.at = at;
      at.x += 30 * gxm_step;
      stay.push_back(std::move(instance));
    }
    if (divides_picture) {
      sheet.shapes.clear();
      sheet.texts.clear();
    }
    // Nets that went into a part as a whole have nothing left here, others only their names.
    sheet.instances = std::move(stay);
    for (std::size_t i = 0; i < sheet.nets.size(); ++i) {
      if (last_chunk[i] < 0) continue;
      if (shared[i])
        sheet.nets[i].segments.clear();
      else
        sheet.nets[i] = {.source = sheet.nets[i].source};
    }
    gxm_complain(design_.warnings, sheet.source,
                 "the sheet of " + name + " would hold more objects than a file can: its " +
                     "instances are in " + std::to_string(parts) + " parts of one more level");
    gx_at(design_.cells, cell_).sheet = std::move(sheet);
  }

 private:
  // A wire by its net and its place there.
  using wire_t = std::pair<int, std::size_t>;
  struct chunk_t {
    std::vector<gxi_instance_t> instances{};
    std::vector<wire_t> wires{};
    std::vector<gxm_shape_t> shapes{};
    std::vector<gxi_text_t> texts{};
  };

  // The wires that leave with each instance: those at its pins, and its share of the others.
  std::vector<std::vector<wire_t>> wires_of_instances(const gxi_sheet_t& sheet) const {
    std::vector<std::vector<wire_t>> wires(sheet.instances.size());
    std::vector<std::map<std::pair<std::int32_t, std::int32_t>, std::size_t>> pins(
        sheet.nets.size());
    std::vector<std::vector<std::size_t>> parts(sheet.nets.size());
    for (std::size_t i = 0; i < sheet.instances.size(); ++i) {
      const auto& instance = sheet.instances[i];
      if (instance.kind != gxi_kind::part) continue;
      const auto& symbol = gx_at(design_.cells, instance.symbol).symbol;
      for (std::size_t pin = 0; pin < instance.nets.size(); ++pin) {
        if (instance.nets[pin] < 0) continue;
        const auto net = static_cast<std::size_t>(instance.nets[pin]);
        const auto at = gxi_on_sheet(instance, symbol.pins[pin].at);
        pins[net].emplace(std::pair(at.x, at.y), i);
        parts[net].push_back(i);
      }
    }
    for (std::size_t net = 0; net < sheet.nets.size(); ++net) {
      const auto& segments = sheet.nets[net].segments;
      for (std::size_t k = 0; k < segments.size() && !parts[net].empty(); ++k) {
        auto at = pins[net].find({segments[k].from.x, segments[k].from.y});
        if (at == pins[net].end()) at = pins[net].find({segments[k].to.x, segments[k].to.y});
        const auto with = at != pins[net].end()
                              ? at->second
                              : parts[net][k * parts[net].size() / segments.size()];
        wires[with].emplace_back(static_cast<int>(net), k);
      }
    }
    return wires;
  }

  gxi_instance_t make_part(const std::string& of, std::size_t number, chunk_t chunk,
                           gxi_sheet_t& whole, const std::vector<bool>& shared) {
    auto& instances = chunk.instances;
    gxi_cell_t part;
    part.name = of + "_part" + std::to_string(number);
    part.symbol.name = part.name;
    part.symbol.source = whole.source;
    gxi_sheet_t sheet;
    sheet.source = whole.source;
    sheet.shapes = std::move(chunk.shapes);
    sheet.texts = std::move(chunk.texts);
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
          auto& outer = gx_at(whole.nets, net);
          gxi_net_t inner{.name = outer.name, .name_look = outer.name_look, .source = outer.source};
          outer.name_look.reset();  // it is shown once
          if (gx_at(shared, net)) {
            inner.port = outer.name.empty() ? "NET" + std::to_string(net) : outer.name;
            add_pin(part.symbol, inner.port);
            instance.nets.push_back(net);
          } else {
            inner.properties = outer.properties;
          }
          sheet.nets.push_back(std::move(inner));
        }
        net = found->second;
      }
    for (const auto& [net, segment] : chunk.wires)
      gx_at(sheet.nets, net_here.at(net))
          .segments.push_back(gx_at(whole.nets, net).segments[segment]);
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
    gx_at(used, instance.symbol) = true;
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
