#include "import/kicad/members.h"

#include <algorithm>

#include "gx/text/at.h"
#include "import/drawing/source_file.h"

namespace {
constexpr std::size_t most_bits = 1'000'000;  // of all names of buses
}  // namespace

gxi_kicad_members_t::gxi_kicad_members_t(const gxi_kicad_sheet_t& of) : sheet(of), file(*of.file) {
  for (const auto& label : sheet.labels) label_buses.push_back(bus_of(label));
  for (const auto& pins : sheet.block_pins) {
    auto& row = pin_buses.emplace_back();
    auto& named = pins_of_name_.emplace_back();
    for (std::size_t pin = 0; pin < pins.size(); ++pin) named[pins[pin]].push_back(pin);
    for (const auto& pin : pins) row.push_back(bus_of(pin));
  }
  take(file.wires.size());
  first_entry_ = take(file.entries.size());
  first_label_ = take(file.labels.size());
  first_junction_ = take(file.junctions.size());
  for (const auto& pins : sheet.pins) first_pin_.push_back(take(pins.size()));
  for (const auto& pins : pin_buses) {
    auto& row = first_of_block_.emplace_back();
    for (const auto& bus : pins) row.push_back(take(std::max<std::size_t>(bus.members.size(), 1)));
  }
  for (std::size_t i = 0; i < sheet.labels.size(); ++i) {
    if (file.labels[i].kind == gxi_kicad_label::other || sheet.labels[i].empty()) continue;
    const auto& bus = label_buses[i].members;
    (bus.empty() ? net_labels : bus_labels).push_back(i);
    if (bus.empty()) add_name(sheet.labels[i]);
    for (const auto& member : bus) add_name(member);
  }
  each_pin([&](std::size_t, const auto& pin, int) {
    if (!pin.power.empty()) add_name(pin.power);
  });
  each_block_pin([&](std::size_t, std::size_t, const auto& bus, int) {
    for (const auto& member : bus.members) add_name(member);
  });
}

gxi_kicad_bus_t gxi_kicad_members_t::bus_of(const std::string& name) {
  auto bus = gxi_kicad_bus(name, sheet.aliases);
  nb_of_bits_ += bus.members.size();
  if (nb_of_bits_ > most_bits)
    gxi_refuse({sheet.name, 1}, "its buses have more than a million members in all");
  return bus;
}

int gxi_kicad_members_t::take(std::size_t count) {
  const int first = static_cast<int>(count_);
  count_ += count;
  return first;
}

void gxi_kicad_members_t::add_name(const std::string& text) {
  const auto [found, is_new] = names_.emplace(text, -1);
  if (is_new) found->second = take(1);
}

int gxi_kicad_members_t::pin(std::size_t symbol, std::size_t i) const {
  return first_pin_[symbol] + static_cast<int>(i);
}

int gxi_kicad_members_t::block_pin(std::size_t block, std::size_t i, std::size_t member) const {
  return first_of_block_[block][i] + static_cast<int>(member);
}

std::vector<int> gxi_kicad_members_t::block_ports(std::size_t block,
                                                  const gxi_kicad_port_t& port) const {
  std::vector<int> members;
  if (const auto pins = pins_of_name_[block].find(port.name); pins != pins_of_name_[block].end())
    for (const auto pin : pins->second)
      members.push_back(block_pin(block, pin, static_cast<std::size_t>(port.member)));
  return members;
}

int gxi_kicad_strength(gxi_kicad_label kind) {
  return kind == gxi_kicad_label::global         ? gxi_of_global
         : kind == gxi_kicad_label::hierarchical ? gxi_of_hierarchical
                                                 : gxi_of_local;
}
