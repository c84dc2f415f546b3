// Wires and pins join where their ends meet; a junction joins all wires through it, and a label the
// wires that it lies on. On a sheet a name is one net, whatever kind of label gives it.
#include "import/kicad/joins.h"

#include <algorithm>
#include <set>
#include <utility>

#include "gx/text/at.h"
#include "import/kicad/touching.h"

namespace {

using point_t = gxi_kicad_point_t;
using members_t = gxi_kicad_members_t;

// What makes a label at its place belong to that and not to a wire which only runs through it,
// unless another wire ends there: a pin, another label, a no-connect mark.
class hidden_wires_t {
 public:
  explicit hidden_wires_t(const members_t& members) {
    for (const auto& pins : members.sheet.pins)
      for (const auto& pin : pins) places_.insert(pin.at);
    for (const auto& block : members.file.blocks)
      for (const auto& pin : block.pins) places_.insert(pin.text.at);
    for (const auto& mark : members.file.no_connects) places_.insert(mark);
    std::set<point_t> labels;
    for (const auto& label : members.file.labels)
      if (!labels.insert(label.text.at).second) places_.insert(label.text.at);
    for (const auto& wire : members.file.wires)
      for (const auto end : {wire.from, wire.to}) places_.erase(end);
  }
  bool at(point_t place) const { return places_.contains(place); }

 private:
  std::set<point_t> places_{};
};

void join_places(const members_t& members, gxi_groups_t& groups) {
  const auto& file = members.file;
  gxi_kicad_meetings_t places(groups);
  for (std::size_t i = 0; i < file.wires.size(); ++i) {
    places.meet(file.wires[i].from, members.wire(i));
    places.meet(file.wires[i].to, members.wire(i));
  }
  std::vector<gxi_kicad_touch_t> touches;
  const auto touch = [&](point_t at, int member) {
    places.meet(at, member);
    touches.push_back({at, member});
  };
  // An entry joins what it touches, but for its end on its bus.
  std::vector<point_t> ends;
  for (const auto& entry : file.entries) ends.insert(ends.end(), {entry.from, entry.to});
  const auto on_bus = gxi_kicad_on_wires(file.buses, ends);
  for (std::size_t i = 0; i < ends.size(); ++i)
    if (!on_bus[i]) touch(ends[i], members.entry(i / 2));
  members.each_pin([&](std::size_t, const auto& pin, int member) { places.meet(pin.at, member); });
  members.each_block_pin([&](std::size_t i, std::size_t pin, const auto& bus, int member) {
    if (bus.members.empty()) places.meet(file.blocks[i].pins[pin].text.at, member);
  });
  const hidden_wires_t hidden(members);
  for (const auto i : members.net_labels) {
    const auto at = file.labels[i].text.at;
    places.meet(at, members.label(i));
    if (!hidden.at(at)) touches.push_back({at, members.label(i)});
  }
  for (std::size_t i = 0; i < file.junctions.size(); ++i)
    touch(file.junctions[i], members.junction(i));
  gxi_kicad_join_touching(groups, file.wires, touches);
}

// A pin of a block names no net of the sheet, but where nothing else names what it is joined to
// by place, and its name is a second one elsewhere, never the first: the first pin of a name then
// joins that net. Such pins, and their names.
std::vector<std::pair<int, std::string>> second_names(const members_t& members,
                                                      gxi_groups_t& groups) {
  struct piece_t {
    int strength = 0;
    std::string_view name{}, pin{};
  };
  const auto& sheet = members.sheet;
  std::map<int, piece_t> pieces;
  const auto drive = [&](int member, std::string_view text, int strength) {
    auto& piece = pieces[groups.root(member)];
    if (std::pair(-strength, text) < std::pair(-piece.strength, piece.name) || piece.name.empty()) {
      piece.strength = strength;
      piece.name = text;
    }
  };
  for (const auto i : members.net_labels)
    drive(members.label(i), sheet.labels[i], gxi_kicad_strength(members.file.labels[i].kind));
  members.each_pin([&](std::size_t, const auto& pin, int member) {
    if (!pin.power.empty()) drive(member, pin.power, pin.everywhere ? gxi_of_global : gxi_of_local);
  });
  std::set<std::string_view> taken;  // first names
  for (const auto& [root, piece] : pieces) taken.insert(piece.name);
  std::vector<std::pair<int, std::string_view>> pins;
  members.each_block_pin([&](std::size_t i, std::size_t pin, const auto& bus, int member) {
    if (bus.members.empty()) pins.emplace_back(member, sheet.block_pins[i][pin]);
  });
  for (const auto& [member, text] : pins)
    if (auto& piece = pieces[groups.root(member)]; piece.pin.empty() || text < piece.pin)
      piece.pin = text;
  std::vector<std::pair<int, std::string>> second;
  for (const auto& [member, text] : pins) {
    const auto& piece = pieces[groups.root(member)];
    if (piece.strength == 0 && piece.pin == text && members.has_name(std::string(text)) &&
        taken.insert(text).second)
      second.emplace_back(member, text);
  }
  return second;
}

void join_names(const members_t& members, gxi_groups_t& groups) {
  for (const auto i : members.net_labels)
    groups.join(members.name(members.sheet.labels[i]), members.label(i));
  members.each_pin([&](std::size_t, const auto& pin, int member) {
    if (!pin.power.empty()) groups.join(members.name(pin.power), member);
  });
}

void join_within(const members_t& members, gxi_groups_t& groups) {
  const auto& sheet = members.sheet;
  for (std::size_t i = 0; i < sheet.joined.size(); ++i)
    for (const auto& [a, b] : sheet.joined[i])
      groups.join(members.pin(i, static_cast<std::size_t>(a)),
                  members.pin(i, static_cast<std::size_t>(b)));
  for (std::size_t i = 0; i < sheet.faces.size(); ++i) {
    if (sheet.faces[i] == nullptr) continue;
    for (const auto& net : sheet.faces[i]->nets) {
      int last = -1;
      for (const auto& port : net.ports)
        for (const int member : members.block_ports(i, port)) {
          if (last >= 0) groups.join(last, member);
          last = member;
        }
    }
  }
}

}  // namespace

void gxi_kicad_meetings_t::meet(gxi_kicad_point_t at, int member) {
  const auto [found, is_new] = at_.emplace(at, member);
  if (!is_new) groups_.join(found->second, member);
}

void gxi_kicad_join_wires(const gxi_kicad_members_t& members, gxi_groups_t& groups) {
  join_places(members, groups);
  const auto second = second_names(members, groups);
  join_names(members, groups);
  for (const auto& [pin, text] : second) groups.join(pin, members.name(text));
  join_within(members, groups);
}
