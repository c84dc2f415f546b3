// Members of groups are wires, entries of buses, labels, junctions, pins of symbols, members of the
// pins of blocks, and names.
//
// Wires and pins join where their ends meet; a junction joins all wires through it, and a label the
// wires that it lies on. On a sheet a name is one net, whatever kind of label gives it. A bus is
// the nets that its labels and pins of blocks name.
#include "import/kicad/nets.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "gx/text/at.h"
#include "import/drawing/joining.h"
#include "import/drawing/source_file.h"
#include "import/kicad/touching.h"

namespace {

using point_t = gxi_kicad_point_t;

// Joins everything at one place.
class places_t {
 public:
  explicit places_t(gxi_groups_t& groups) : groups_(groups) {}
  void meet(point_t at, int member) {
    const auto [found, is_new] = at_.emplace(at, member);
    if (!is_new) groups_.join(found->second, member);
  }

 private:
  gxi_groups_t& groups_;
  std::map<point_t, int> at_{};
};

// What names a bus: a label, or a pin of a block.
struct bus_end_t {
  gxi_kicad_bus_t bus{};
  std::string name{};
  int priority = 0;
  int first = -1;  // of a pin: the member of its first bit
};

// For each member of `search`, its place in `driver`; -1: none.
std::vector<int> matches(const gxi_kicad_bus_t& driver, const gxi_kicad_bus_t& search) {
  std::vector<int> found(search.members.size(), -1);
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (driver.is_vector) {
      if (search.is_vector && i < driver.members.size()) found[i] = static_cast<int>(i);
      continue;
    }
    const auto same = std::find(driver.local.begin(), driver.local.end(), search.local[i]);
    if (same != driver.local.end()) found[i] = static_cast<int>(same - driver.local.begin());
  }
  return found;
}

constexpr std::size_t most_bits = 1'000'000;  // of all names of buses

enum : int { of_block_pin = 1, of_hierarchical, of_local, of_global };

int priority_of(gxi_kicad_label kind) {
  return kind == gxi_kicad_label::global         ? of_global
         : kind == gxi_kicad_label::hierarchical ? of_hierarchical
                                                 : of_local;
}

class joiner {
 public:
  explicit joiner(const gxi_kicad_sheet_t& sheet) : sheet_(sheet), file_(*sheet.file) {
    for (const auto& label : sheet.labels) label_buses_.push_back(bus_of(label));
    for (const auto& pins : sheet.block_pins) {
      auto& row = pin_buses_.emplace_back();
      auto& named = pin_named_.emplace_back();
      auto& further = further_pins_.emplace_back();
      for (std::size_t pin = 0; pin < pins.size(); ++pin)
        if (!named.emplace(pins[pin], pin).second) further.emplace(pins[pin], pin);
      for (const auto& pin : pins) row.push_back(bus_of(pin));
    }
    number_members();
  }

  gxi_kicad_joined_t run() {
    gxi_groups_t groups(count_);
    groups_ = &groups;
    join_places();
    const auto second = second_names();
    join_names();
    for (const auto& [pin, text] : second) groups_->join(pin, name(text));
    join_within();
    join_buses();
    collect();
    return std::move(result_);
  }

 private:
  gxi_kicad_bus_t bus_of(const std::string& name) {
    auto bus = gxi_kicad_bus(name, sheet_.aliases);
    nb_of_bits_ += bus.members.size();
    if (nb_of_bits_ > most_bits)
      gxi_refuse({sheet_.name, 1}, "its buses have more than a million members in all");
    return bus;
  }

  bool is_net_label(std::size_t i) const {
    return label_buses_[i].members.empty() && !sheet_.labels[i].empty() &&
           file_.labels[i].kind != gxi_kicad_label::other;
  }
  bool is_bus_label(std::size_t i) const {
    return !label_buses_[i].members.empty() && file_.labels[i].kind != gxi_kicad_label::other;
  }

  // --- numbers
  int take(std::size_t count) {
    const int first = static_cast<int>(count_);
    count_ += count;
    return first;
  }
  int name(const std::string& text) {
    const auto [found, is_new] = names_.emplace(text, -1);
    if (is_new) found->second = take(1);
    return found->second;
  }

  void number_members() {
    take(file_.wires.size());
    first_entry_ = take(file_.entries.size());
    first_label_ = take(file_.labels.size());
    first_junction_ = take(file_.junctions.size());
    for (const auto& pins : sheet_.pins) first_pin_.push_back(take(pins.size()));
    for (const auto& pins : pin_buses_) {
      auto& row = first_of_block_.emplace_back();
      for (const auto& bus : pins)
        row.push_back(take(std::max<std::size_t>(bus.members.size(), 1)));
    }
    for (std::size_t i = 0; i < sheet_.labels.size(); ++i) {
      if (is_net_label(i)) name(sheet_.labels[i]);
      for (const auto& member : label_buses_[i].members) name(member);
    }
    for (const auto& pins : sheet_.pins)
      for (const auto& pin : pins)
        if (!pin.power.empty()) name(pin.power);
    for (const auto& pins : pin_buses_)
      for (const auto& bus : pins)
        for (const auto& member : bus.members) name(member);
  }

  // --- places
  void join_places() {
    places_t places(*groups_);
    for (std::size_t i = 0; i < file_.wires.size(); ++i) {
      places.meet(file_.wires[i].from, static_cast<int>(i));
      places.meet(file_.wires[i].to, static_cast<int>(i));
    }
    std::vector<gxi_kicad_touch_t> touches;
    const auto touch = [&](point_t at, int member) {
      places.meet(at, member);
      touches.push_back({at, member});
    };
    // An entry joins what it touches, but for its end on its bus.
    std::vector<point_t> ends;
    for (const auto& entry : file_.entries) ends.insert(ends.end(), {entry.from, entry.to});
    const auto on_bus = gxi_kicad_on_wires(file_.buses, ends);
    for (std::size_t i = 0; i < ends.size(); ++i)
      if (!on_bus[i]) touch(ends[i], first_entry_ + static_cast<int>(i / 2));
    for (std::size_t i = 0; i < sheet_.pins.size(); ++i)
      for (std::size_t pin = 0; pin < sheet_.pins[i].size(); ++pin)
        places.meet(sheet_.pins[i][pin].at, first_pin_[i] + static_cast<int>(pin));
    for (std::size_t i = 0; i < file_.blocks.size(); ++i)
      for (std::size_t pin = 0; pin < file_.blocks[i].pins.size(); ++pin)
        if (pin_buses_[i][pin].members.empty())
          places.meet(file_.blocks[i].pins[pin].text.at, first_of_block_[i][pin]);
    for (std::size_t i = 0; i < file_.labels.size(); ++i) {
      if (!is_net_label(i)) continue;
      const int label = first_label_ + static_cast<int>(i);
      const auto at = file_.labels[i].text.at;
      places.meet(at, label);
      if (!hides_wires(at)) touches.push_back({at, label});
    }
    for (std::size_t i = 0; i < file_.junctions.size(); ++i)
      touch(file_.junctions[i], first_junction_ + static_cast<int>(i));
    gxi_kicad_join_touching(*groups_, file_.wires, touches);
  }

  // A label at a pin, at another label or at a no-connect mark belongs to that, not to a wire that
  // only runs through the place, unless another wire ends there.
  bool hides_wires(point_t at) {
    if (at_place_.empty()) {
      for (const auto& pins : sheet_.pins)
        for (const auto& pin : pins) at_place_[pin.at] += 2;
      for (const auto& block : file_.blocks)
        for (const auto& pin : block.pins) at_place_[pin.text.at] += 2;
      for (const auto& mark : file_.no_connects) at_place_[mark] += 2;
      for (const auto& label : file_.labels) ++at_place_[label.text.at];
      for (const auto& wire : file_.wires) at_place_[wire.from] = at_place_[wire.to] = 0;
    }
    return at_place_[at] > 1;
  }

  // A pin of a block names no net of the sheet, but where nothing else names what it is joined to
  // by place, and its name is a second one elsewhere, never the first: the first pin of a name then
  // joins that net. Such pins, and their names.
  std::vector<std::pair<int, std::string>> second_names() {
    struct piece_t {
      int strength = 0;
      std::string_view name{}, pin{};
    };
    std::map<int, piece_t> pieces;
    const auto drive = [&](int member, std::string_view text, int strength) {
      auto& piece = pieces[groups_->root(member)];
      if (std::pair(-strength, text) < std::pair(-piece.strength, piece.name) ||
          piece.name.empty()) {
        piece.strength = strength;
        piece.name = text;
      }
    };
    for (std::size_t i = 0; i < sheet_.labels.size(); ++i)
      if (is_net_label(i))
        drive(first_label_ + static_cast<int>(i), sheet_.labels[i],
              priority_of(file_.labels[i].kind));
    for (std::size_t i = 0; i < sheet_.pins.size(); ++i)
      for (std::size_t pin = 0; pin < sheet_.pins[i].size(); ++pin)
        if (const auto& met = sheet_.pins[i][pin]; !met.power.empty())
          drive(first_pin_[i] + static_cast<int>(pin), met.power,
                met.everywhere ? of_global : of_local);
    std::set<std::string_view> taken;  // first names
    for (const auto& [root, piece] : pieces) taken.insert(piece.name);
    std::vector<std::pair<int, std::string_view>> pins;
    for (std::size_t i = 0; i < pin_buses_.size(); ++i)
      for (std::size_t pin = 0; pin < pin_buses_[i].size(); ++pin)
        if (pin_buses_[i][pin].members.empty())
          pins.emplace_back(first_of_block_[i][pin], sheet_.block_pins[i][pin]);
    for (const auto& [member, text] : pins)
      if (auto& piece = pieces[groups_->root(member)]; piece.pin.empty() || text < piece.pin)
        piece.pin = text;
    std::vector<std::pair<int, std::string>> second;
    for (const auto& [member, text] : pins) {
      const auto& piece = pieces[groups_->root(member)];
      if (piece.strength == 0 && piece.pin == text && names_.find(text) != names_.end() &&
          taken.insert(text).second)
        second.emplace_back(member, text);
    }
    return second;
  }

  void join_names() {
    for (std::size_t i = 0; i < sheet_.labels.size(); ++i)
      if (is_net_label(i))
        groups_->join(name(sheet_.labels[i]), first_label_ + static_cast<int>(i));
    for (std::size_t i = 0; i < sheet_.pins.size(); ++i)
      for (std::size_t pin = 0; pin < sheet_.pins[i].size(); ++pin)
        if (const auto& power = sheet_.pins[i][pin].power; !power.empty())
          groups_->join(name(power), first_pin_[i] + static_cast<int>(pin));
  }

  void join_within() {
    for (std::size_t i = 0; i < sheet_.joined.size(); ++i)
      for (const auto& [a, b] : sheet_.joined[i])
        groups_->join(first_pin_[i] + a, first_pin_[i] + b);
    for (std::size_t i = 0; i < sheet_.faces.size(); ++i) {
      if (sheet_.faces[i] == nullptr) continue;
      for (const auto& net : sheet_.faces[i]->nets) {
        int first = -1;
        for (const auto& port : net.ports) {
          const int member = block_member(i, port);
          if (member < 0) continue;
          if (first >= 0) groups_->join(first, member);
          first = member;
          // Further pins of its name meet it on the sheet below.
          const auto [further, end] = further_pins_[i].equal_range(port.name);
          for (auto pin = further; pin != end; ++pin)
            groups_->join(member, gx_at(first_of_block_[i], pin->second) + port.member);
        }
      }
    }
  }

  // -1: the block has no such pin.
  int block_member(std::size_t block, const gxi_kicad_port_t& port) const {
    const auto pin = pin_named_[block].find(port.name);
    return pin == pin_named_[block].end()
               ? -1
               : gx_at(first_of_block_[block], pin->second) + port.member;
  }

  // --- buses
  void join_buses() {
    gather_bus_ends();
    const auto nb_of_lines = file_.buses.size();
    gxi_groups_t lines(nb_of_lines + ends_.size() + file_.junctions.size());
    places_t places(lines);
    for (std::size_t i = 0; i < nb_of_lines; ++i) {
      places.meet(file_.buses[i].from, static_cast<int>(i));
      places.meet(file_.buses[i].to, static_cast<int>(i));
    }
    std::vector<gxi_kicad_touch_t> touches;
    for (std::size_t i = 0; i < ends_.size(); ++i) {
      const int member = static_cast<int>(nb_of_lines + i);
      places.meet(end_places_[i], member);
      if (ends_[i].first < 0) touches.push_back({end_places_[i], member});
    }
    for (std::size_t i = 0; i < file_.junctions.size(); ++i) {
      const int member = static_cast<int>(nb_of_lines + ends_.size() + i);
      places.meet(file_.junctions[i], member);
      touches.push_back({file_.junctions[i], member});
    }
    gxi_kicad_join_touching(lines, file_.buses, touches);
    std::map<int, std::vector<int>> groups;
    for (std::size_t i = 0; i < ends_.size(); ++i)
      groups[lines.root(static_cast<int>(nb_of_lines + i))].push_back(static_cast<int>(i));
    drive(groups);
  }

  void gather_bus_ends() {
    for (std::size_t i = 0; i < sheet_.labels.size(); ++i) {
      if (!is_bus_label(i)) continue;
      ends_.push_back({label_buses_[i], sheet_.labels[i], priority_of(file_.labels[i].kind), -1});
      end_places_.push_back(file_.labels[i].text.at);
    }
    for (std::size_t i = 0; i < pin_buses_.size(); ++i)
      for (std::size_t pin = 0; pin < pin_buses_[i].size(); ++pin) {
        if (pin_buses_[i][pin].members.empty()) continue;
        ends_.push_back(
            {pin_buses_[i][pin], sheet_.block_pins[i][pin], of_block_pin, first_of_block_[i][pin]});
        end_places_.push_back(file_.blocks[i].pins[pin].text.at);
      }
  }

  // The strongest name of a bus is its nets'; a pin of a block names them when no other bus that
  // only pins name has the same name.
  void drive(const std::map<int, std::vector<int>>& groups) {
    std::vector<std::pair<const bus_end_t*, const std::vector<int>*>> driven;
    std::map<std::string, int> of_pins;
    for (const auto& [root, group] : groups) {
      const auto strength = [&](int i) {
        const auto& end = gx_at(ends_, i);
        return std::tuple(-end.priority, -static_cast<int>(end.bus.members.size()),
                          std::string_view(end.name));
      };
      const int first = *std::min_element(group.begin(), group.end(),
                                          [&](int a, int b) { return strength(a) < strength(b); });
      driven.emplace_back(&gx_at(ends_, first), &group);
      if (gx_at(ends_, first).priority == of_block_pin) ++of_pins[gx_at(ends_, first).name];
    }
    for (const auto& [driver, group] : driven) {
      const bool named = driver->first < 0 || of_pins[driver->name] == 1;
      if (driver->first >= 0 && named)
        for (std::size_t i = 0; i < driver->bus.members.size(); ++i)
          groups_->join(name(driver->bus.members[i]), driver->first + static_cast<int>(i));
      for (const int other : *group) join_to(*driver, gx_at(ends_, other));
    }
  }

  int member_of(const bus_end_t& end, std::size_t i) {
    return end.first >= 0 ? end.first + static_cast<int>(i) : name(end.bus.members[i]);
  }
  void join_to(const bus_end_t& driver, const bus_end_t& other) {
    const auto found = matches(driver.bus, other.bus);
    for (std::size_t i = 0; i < found.size(); ++i)
      if (found[i] >= 0)
        groups_->join(member_of(driver, static_cast<std::size_t>(found[i])), member_of(other, i));
  }

  // --- nets
  int net(int member, int line) {
    const auto [number, is_new] = numbers_.of(groups_->root(member));
    if (is_new) result_.nets.push_back({.line = line});
    return number;
  }

  void collect() {
    for (std::size_t i = 0; i < file_.wires.size(); ++i)
      result_.of_wire.push_back(net(static_cast<int>(i), file_.wires[i].line));
    for (std::size_t i = 0; i < file_.entries.size(); ++i)
      result_.of_entry.push_back(net(first_entry_ + static_cast<int>(i), file_.entries[i].line));
    for (std::size_t i = 0; i < sheet_.pins.size(); ++i) {
      auto& row = result_.of_pin.emplace_back();
      for (std::size_t pin = 0; pin < sheet_.pins[i].size(); ++pin)
        row.push_back(net(first_pin_[i] + static_cast<int>(pin), file_.placed[i].line));
    }
    for (std::size_t i = 0; i < pin_buses_.size(); ++i) {
      auto& row = result_.of_block.emplace_back();
      for (std::size_t pin = 0; pin < pin_buses_[i].size(); ++pin) {
        auto& members = row.emplace_back();
        const auto count = std::max<std::size_t>(pin_buses_[i][pin].members.size(), 1);
        for (std::size_t k = 0; k < count; ++k)
          members.push_back(net(first_of_block_[i][pin] + static_cast<int>(k),
                                file_.blocks[i].pins[pin].text.line));
      }
    }
    for (std::size_t i = 0; i < file_.labels.size(); ++i)
      result_.of_label.push_back(
          is_net_label(i) ? net(first_label_ + static_cast<int>(i), file_.labels[i].text.line)
                          : -1);
    name_nets();
    hand_up();
    mark_unconnected();
  }

  void give(int member, const std::string& text, int priority, int line) {
    auto& net_of = gx_at(result_.nets, net(member, line));
    if (strength_.size() < result_.nets.size()) strength_.resize(result_.nets.size());
    auto& strength = gx_at(strength_, &net_of - result_.nets.data());
    if (priority > strength || (priority == strength && text < net_of.name)) {
      strength = priority;
      net_of.name = text;
    }
    if (priority == of_global) net_of.globals.push_back(text);
  }

  void name_nets() {
    for (std::size_t i = 0; i < file_.labels.size(); ++i) {
      const int priority = priority_of(file_.labels[i].kind);
      const int line = file_.labels[i].text.line;
      if (is_net_label(i))
        give(first_label_ + static_cast<int>(i), sheet_.labels[i], priority, line);
      if (is_bus_label(i))
        for (std::size_t k = 0; k < label_buses_[i].members.size(); ++k)
          give(name(label_buses_[i].members[k]), label_buses_[i].members[k], priority, line);
    }
    for (std::size_t i = 0; i < sheet_.pins.size(); ++i)
      for (std::size_t pin = 0; pin < sheet_.pins[i].size(); ++pin)
        if (const auto& met = sheet_.pins[i][pin]; !met.power.empty())
          give(first_pin_[i] + static_cast<int>(pin), met.power,
               met.everywhere ? of_global : of_local, file_.placed[i].line);
    take_from_below();
    for (auto& one : result_.nets) {
      std::sort(one.globals.begin(), one.globals.end());
      one.globals.erase(std::unique(one.globals.begin(), one.globals.end()), one.globals.end());
    }
  }

  // What a sheet below makes global is so here, too, unless the net has a global name here or from
  // a block before: then what is below has that name, and other nets of its own name stay apart.
  void take_from_below() {
    std::map<int, const gxi_kicad_face_t::net_t*> from;
    for (std::size_t i = 0; i < sheet_.faces.size(); ++i) {
      if (sheet_.faces[i] == nullptr) continue;
      for (const auto& below : sheet_.faces[i]->nets)
        for (const auto& port : below.ports)
          if (const int member = block_member(i, port); member >= 0 && !below.globals.empty())
            take_globals(member, below, from, file_.blocks[i].line);
    }
  }
  void take_globals(int member, const gxi_kicad_face_t::net_t& below,
                    std::map<int, const gxi_kicad_face_t::net_t*>& from, int line) {
    const int index = net(member, line);
    const auto& globals = gx_at(result_.nets, index).globals;
    const bool is_own = !globals.empty() && !from.contains(index);
    if (is_own || (from.contains(index) && from[index] != &below)) {
      for (const auto& global : below.globals)
        if (std::ranges::find(globals, global) == globals.end())
          result_.overridden.push_back({line, global, globals.front()});
      return;
    }
    from[index] = &below;
    for (const auto& global : below.globals) give(member, global, of_global, line);
  }

  void hand_up() {
    for (std::size_t i = 0; i < file_.labels.size(); ++i) {
      if (file_.labels[i].kind != gxi_kicad_label::hierarchical) continue;
      const auto& members = label_buses_[i].members;
      const int line = file_.labels[i].text.line;
      if (is_net_label(i)) add_port(net(first_label_ + static_cast<int>(i), line), i, 0);
      for (std::size_t k = 0; k < members.size(); ++k)
        add_port(net(name(members[k]), line), i, static_cast<int>(k));
    }
  }
  void add_port(int index, std::size_t label, int member) {
    gxi_kicad_port_t port{sheet_.labels[label], member};
    if (ports_.insert(port).second) gx_at(result_.nets, index).ports.push_back(std::move(port));
  }

  void mark_unconnected() {
    std::map<point_t, int> nets;
    for (std::size_t i = 0; i < sheet_.pins.size(); ++i)
      for (std::size_t pin = 0; pin < sheet_.pins[i].size(); ++pin)
        nets.emplace(sheet_.pins[i][pin].at, gx_at(result_.of_pin[i], pin));
    for (std::size_t i = 0; i < file_.wires.size(); ++i)
      for (const auto at : {file_.wires[i].from, file_.wires[i].to})
        nets.emplace(at, result_.of_wire[i]);
    for (const auto& at : file_.no_connects)
      if (const auto net_of = nets.find(at); net_of != nets.end())
        gx_at(result_.nets, net_of->second).no_connect = true;
  }

  const gxi_kicad_sheet_t& sheet_;
  const gxi_kicad_file_t& file_;
  std::vector<gxi_kicad_bus_t> label_buses_{};
  std::vector<std::vector<gxi_kicad_bus_t>> pin_buses_{};        // by block and pin
  std::vector<std::map<std::string, std::size_t>> pin_named_{};  // by block; the first of a name
  std::vector<std::multimap<std::string, std::size_t>> further_pins_{};
  std::size_t count_ = 0, nb_of_bits_ = 0;
  int first_entry_ = 0, first_label_ = 0, first_junction_ = 0;
  std::vector<int> first_pin_{};                    // by symbol
  std::vector<std::vector<int>> first_of_block_{};  // by block and pin
  std::map<std::string, int, std::less<>> names_{};
  std::set<gxi_kicad_port_t> ports_{};
  std::map<point_t, int> at_place_{};  // what hides wires: two for each, a label one
  gxi_groups_t* groups_ = nullptr;
  std::vector<bus_end_t> ends_{};
  std::vector<point_t> end_places_{};
  gxi_group_numbers_t numbers_{};
  std::vector<int> strength_{};  // by net: of its name
  gxi_kicad_joined_t result_{};
};

}  // namespace

gxi_kicad_joined_t gxi_kicad_join(const gxi_kicad_sheet_t& sheet) { return joiner(sheet).run(); }

gxi_kicad_face_t gxi_kicad_face(const gxi_kicad_joined_t& joined) {
  gxi_kicad_face_t face;
  for (const auto& net : joined.nets)
    if (!net.ports.empty()) face.nets.push_back({net.ports, net.globals});
  return face;
}
