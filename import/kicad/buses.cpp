// The strongest name of a bus is its nets'; what else names the bus has the same nets.
#include "import/kicad/buses.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "gx/text/at.h"
#include "import/kicad/joins.h"
#include "import/kicad/touching.h"

namespace {

// What names a bus: a label, or a pin of a block.
struct bus_end_t {
  const gxi_kicad_bus_t* bus = nullptr;
  std::string_view name{};
  gxi_kicad_point_t at{};
  int strength = 0;
  int first = -1;  // of a pin: the member of its first bit
};

std::vector<bus_end_t> ends_of(const gxi_kicad_members_t& members) {
  std::vector<bus_end_t> ends;
  const auto& sheet = members.sheet;
  const auto& file = members.file;
  for (const auto i : members.bus_labels)
    ends.push_back({&members.label_buses[i], sheet.labels[i], file.labels[i].text.at,
                    gxi_kicad_strength(file.labels[i].kind)});
  members.each_block_pin([&](std::size_t i, std::size_t pin, const auto& bus, int member) {
    if (!bus.members.empty())
      ends.push_back({&bus, sheet.block_pins[i][pin], file.blocks[i].pins[pin].text.at,
                      gxi_of_block_pin, member});
  });
  return ends;
}

// The ends on each bus that is drawn.
std::vector<std::vector<const bus_end_t*>> ends_of_buses(const gxi_kicad_file_t& file,
                                                         const std::vector<bus_end_t>& ends) {
  const auto nb_of_lines = file.buses.size();
  gxi_groups_t lines(nb_of_lines + ends.size() + file.junctions.size());
  gxi_kicad_meetings_t places(lines);
  for (std::size_t i = 0; i < nb_of_lines; ++i) {
    places.meet(file.buses[i].from, static_cast<int>(i));
    places.meet(file.buses[i].to, static_cast<int>(i));
  }
  std::vector<gxi_kicad_touch_t> touches;
  int member = static_cast<int>(nb_of_lines);
  for (const auto& end : ends) {
    places.meet(end.at, member);
    if (end.first < 0) touches.push_back({end.at, member});
    ++member;
  }
  for (const auto& at : file.junctions) {
    places.meet(at, member);
    touches.push_back({at, member++});
  }
  gxi_kicad_join_touching(lines, file.buses, touches);
  std::map<int, std::vector<const bus_end_t*>> groups;
  for (std::size_t i = 0; i < ends.size(); ++i)
    groups[lines.root(static_cast<int>(nb_of_lines + i))].push_back(&ends[i]);
  std::vector<std::vector<const bus_end_t*>> found;
  for (auto& [root, group] : groups) found.push_back(std::move(group));
  return found;
}

// Which members of the one are members of the other.
std::vector<std::pair<std::size_t, std::size_t>> matches(const gxi_kicad_bus_t& driver,
                                                         const gxi_kicad_bus_t& other) {
  std::vector<std::pair<std::size_t, std::size_t>> found;
  for (std::size_t i = 0; i < other.members.size(); ++i) {
    if (driver.is_vector) {
      if (other.is_vector && i < driver.members.size()) found.emplace_back(i, i);
      continue;
    }
    const auto same = std::ranges::find(driver.local, other.local[i]);
    if (same != driver.local.end())
      found.emplace_back(static_cast<std::size_t>(same - driver.local.begin()), i);
  }
  return found;
}

const bus_end_t& strongest(const std::vector<const bus_end_t*>& ends) {
  const auto order = [](const bus_end_t& end) {
    return std::tuple(-end.strength, -static_cast<int>(end.bus->members.size()), end.name);
  };
  return **std::ranges::min_element(
      ends, [&](const auto* a, const auto* b) { return order(*a) < order(*b); });
}

}  // namespace

void gxi_kicad_join_buses(const gxi_kicad_members_t& members, gxi_groups_t& groups) {
  const auto ends = ends_of(members);
  const auto buses = ends_of_buses(members.file, ends);
  std::vector<const bus_end_t*> drivers;
  std::map<std::string_view, int> of_pins;  // drivers that are pins of blocks, by name
  for (const auto& on_one : buses) {
    drivers.push_back(&strongest(on_one));
    if (drivers.back()->first >= 0) ++of_pins[drivers.back()->name];
  }
  const auto member_of = [&](const bus_end_t& end, std::size_t i) {
    return end.first >= 0 ? end.first + static_cast<int>(i) : members.name(end.bus->members[i]);
  };
  for (std::size_t k = 0; k < buses.size(); ++k) {
    const auto& driver = *drivers[k];
    // A pin of a block names them when no other bus that only pins name has the same name.
    if (driver.first >= 0 && of_pins[driver.name] == 1)
      for (std::size_t i = 0; i < driver.bus->members.size(); ++i)
        groups.join(members.name(driver.bus->members[i]), member_of(driver, i));
    for (const auto* const other : buses[k])
      for (const auto& [of_driver, of_other] : matches(*driver.bus, *other->bus))
        groups.join(member_of(driver, of_driver), member_of(*other, of_other));
  }
}
