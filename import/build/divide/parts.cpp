// Nets come along with the instances; those that go on elsewhere get ports.
#include "import/build/divide/parts.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <span>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "import/drawing/placement.h"

namespace {

constexpr std::int32_t pins_in_row = 20, ports_in_row = 100, undrawn_in_row = 40, parts_in_row = 20;

gx_pointreal_t in_rows(std::int32_t i, std::int32_t in_row, gx_pointreal_t steps) {
  return {i % in_row * steps.x * gxm_step, i / in_row * steps.y * gxm_step};
}

// A box over the rows of pins.
void draw_part(gxi_symbol_t& symbol) {
  const auto rows = static_cast<std::int32_t>(symbol.pins.size()) / pins_in_row + 1;
  symbol.shapes.push_back(
      {.type = gx_type::rectangle_2d,
       .points = {{-gxm_step, -gxm_step}, {(pins_in_row + 1) * gxm_step, (rows + 1) * gxm_step}}});
  symbol.texts.push_back({symbol.name, {.at = {0, -gxm_step - 1000}}});
}

// The nets that went into a part as a whole have nothing left on the sheet.
template <typename Gone>
void drop_nets(gxi_sheet_t& sheet, Gone gone) {
  std::vector<int> now(sheet.nets.size(), -1);
  int kept = 0;
  for (std::size_t i = 0; i < now.size(); ++i)
    if (!gone(i)) now[i] = kept++;
  std::size_t next = 0;
  std::erase_if(sheet.nets, [&](const auto&) { return now[next++] < 0; });
  for (auto& instance : sheet.instances)
    for (int& net : instance.nets)
      if (net >= 0) net = gx_at(now, net);
}

void lay_out(std::span<gxi_instance_t> parts, std::int32_t below) {
  gx_pointreal_t at{0, below};
  std::int32_t tallest = 0;
  int count = 0;
  for (auto& part : parts) {
    part.at = at;
    tallest = std::max(tallest, static_cast<std::int32_t>(part.nets.size()) / pins_in_row);
    at.x += (pins_in_row + 10) * gxm_step;
    if (++count % parts_in_row == 0) at = {0, at.y + (std::exchange(tallest, 0) + 10) * gxm_step};
  }
}

std::int32_t lowest(const gxi_sheet_t& sheet) {
  gx_boundsreal_t box = gx_empty_bounds;
  gx_include(box, gx_pointreal_t{});
  for (const auto& instance : sheet.instances) gx_include(box, instance.at);
  for (const auto& net : sheet.nets)
    for (const auto& segment : net.segments) {
      gx_include(box, segment.from);
      gx_include(box, segment.to);
    }
  return box.ymax / gxm_step * gxm_step;
}

}  // namespace

gxi_part_maker_t::gxi_part_maker_t(gxi_design_t& design) : design_(design) {
  for (const auto& cell : design.cells) cells_.take(cell.name);
}

void gxi_part_maker_t::make(std::size_t cell, std::vector<gxi_part_t> parts, bool drawing_moves) {
  auto sheet = std::move(*design_.cells[cell].sheet);
  design_.cells[cell].sheet.emplace().source = sheet.source;
  if (of_ != cell) {
    of_ = cell;
    last_ = 0;
    instances_ = nets_ = gxi_names_t();
    for (const auto& instance : sheet.instances) instances_.take(instance.name);
    for (const auto& net : sheet.nets) nets_.take(net.name);
  }
  const auto shared = shared_nets(sheet, parts, drawing_moves);
  std::vector<bool> moves(sheet.instances.size()), touched(sheet.nets.size());
  for (const auto& part : parts)
    for (const auto i : part.instances) {
      moves[i] = true;
      for (const int net : sheet.instances[i].nets)
        if (net >= 0) gx_at(touched, net) = true;
    }
  std::vector<gxi_instance_t> made;
  design_.cells[cell].sheet = std::move(sheet);
  for (auto& part : parts) made.push_back(make_part(cell, std::move(part), shared, drawing_moves));

  auto& rest = *design_.cells[cell].sheet;
  std::size_t next = 0;
  std::erase_if(rest.instances, [&](const auto&) { return moves[next++]; });
  const auto first_made = rest.instances.size();
  std::move(made.begin(), made.end(), std::back_inserter(rest.instances));
  for (std::size_t i = 0; drawing_moves && i < rest.nets.size(); ++i)
    if (touched[i]) rest.nets[i].segments.clear();
  drop_nets(rest, [&](std::size_t i) { return touched[i] && !shared[i]; });
  lay_out(std::span(rest.instances).subspan(first_made), lowest(rest) + 10 * gxm_step);
}

// Nets that go on outside of one part.
std::vector<bool> gxi_part_maker_t::shared_nets(const gxi_sheet_t& sheet,
                                                const std::vector<gxi_part_t>& parts,
                                                bool drawing_moves) const {
  constexpr int nowhere = -1, staying = -2;
  std::vector<int> part_of(sheet.instances.size(), staying);
  for (std::size_t p = 0; p < parts.size(); ++p)
    for (const auto i : parts[p].instances) part_of[i] = static_cast<int>(p);
  std::vector<bool> shared(sheet.nets.size());
  std::vector<int> part_on(sheet.nets.size(), nowhere);
  for (std::size_t i = 0; i < sheet.nets.size(); ++i)
    shared[i] = !sheet.nets[i].port.empty() || !sheet.nets[i].global.empty() ||
                (!drawing_moves && !sheet.nets[i].segments.empty());
  for (std::size_t i = 0; i < sheet.instances.size(); ++i)
    for (const int net : sheet.instances[i].nets) {
      if (net < 0) continue;
      auto& on = gx_at(part_on, net);
      if (part_of[i] == staying || (on != nowhere && on != part_of[i])) gx_at(shared, net) = true;
      on = part_of[i];
    }
  return shared;
}

gxi_instance_t gxi_part_maker_t::make_part(std::size_t of, gxi_part_t part,
                                           const std::vector<bool>& shared, bool drawing_moves) {
  auto& whole = *design_.cells[of].sheet;
  gxi_instance_t instance;
  instance.name = name_part(of);
  instance.source = whole.source;
  instance.drawn = false;
  gxi_cell_t cell;
  cell.name = cell.symbol.name = design_.cells[of].name + "_" + instance.name;
  cell.deck.is_part = true;
  cell.symbol.source = whole.source;
  gxi_sheet_t sheet;
  sheet.source = whole.source;
  sheet.shapes = std::move(part.shapes);
  sheet.texts = std::move(part.texts);
  std::map<int, int> net_here;
  const auto bring = [&](int net) {
    const auto [found, is_new] = net_here.emplace(net, static_cast<int>(sheet.nets.size()));
    if (!is_new) return found->second;
    auto& outer = gx_at(whole.nets, net);
    auto& inner = sheet.nets.emplace_back();
    inner.name = outer.name;
    inner.source = outer.source;
    if (drawing_moves) inner.name_look = std::exchange(outer.name_look, {});  // it is shown once
    if (!gx_at(shared, net)) {
      inner.properties = outer.properties;
      return found->second;
    }
    inner.port = outer.name.empty() ? "NET" + std::to_string(net) : outer.name;
    while (outer.name.empty() && nets_.has(inner.port)) inner.port += "~";
    cell.symbol.pins.push_back(
        {.name = inner.port,
         .at = in_rows(static_cast<std::int32_t>(cell.symbol.pins.size()), pins_in_row, {1, 1})});
    instance.nets.push_back(net);
    return found->second;
  };
  std::int32_t undrawn = 0;
  for (const auto i : part.instances) {
    auto& moved = sheet.instances.emplace_back(std::move(whole.instances[i]));
    for (int& net : moved.nets)
      if (net >= 0) net = bring(net);
    if (!moved.drawn) moved.at = in_rows(undrawn++, undrawn_in_row, {2, 6});
  }
  for (const auto& [net, wire] : part.wires)
    gx_at(sheet.nets, net_here.at(net)).segments.push_back(gx_at(whole.nets, net).segments[wire]);
  add_ports(sheet);
  draw_part(cell.symbol);
  cell.sheet = std::move(sheet);
  instance.symbol = static_cast<int>(design_.cells.size());
  design_.cells.push_back(std::move(cell));
  return instance;
}

std::string gxi_part_maker_t::name_part(std::size_t of) {
  std::string name;
  do {
    name = "part" + std::to_string(++last_);
  } while (instances_.has(name) || cells_.has(design_.cells[of].name + "_" + name));
  cells_.take(design_.cells[of].name + "_" + name);
  return name;
}

// In rows above what is drawn.
void gxi_part_maker_t::add_ports(gxi_sheet_t& sheet) {
  std::int32_t highest = 0;
  for (const auto& instance : sheet.instances) highest = std::min(highest, instance.at.y);
  highest = highest / gxm_step * gxm_step;
  std::int32_t count = 0;
  for (std::size_t i = 0; i < sheet.nets.size(); ++i) {
    if (sheet.nets[i].port.empty()) continue;
    gxi_instance_t port;
    port.kind = gxi_kind::port;
    port.name = sheet.nets[i].port;
    port.symbol = port_symbol();
    port.source = sheet.source;
    port.at = in_rows(count++, ports_in_row, {1, -1});
    port.at.y += highest - 4 * gxm_step;
    port.nets = {static_cast<int>(i)};
    sheet.instances.push_back(std::move(port));
  }
}

// One for all parts of a design.
int gxi_part_maker_t::port_symbol() {
  if (!port_symbol_) {
    port_symbol_ = static_cast<int>(design_.cells.size());
    auto& cell = design_.cells.emplace_back();
    cell.name = cell.symbol.name = cells_.take("part_port");
    cell.symbol.pins.push_back({.name = "P"});
    cell.symbol.properties.push_back({"CLASS", "PORTIO", {}});
  }
  return *port_symbol_;
}
