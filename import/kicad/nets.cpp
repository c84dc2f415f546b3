// Nets in the order of what is on them, their names, and what they are above and below.
#include "import/kicad/nets.h"

#include <algorithm>
#include <map>
#include <set>

#include "gx/text/at.h"
#include "import/drawing/joining.h"
#include "import/kicad/buses.h"
#include "import/kicad/joins.h"
#include "import/kicad/members.h"

namespace {

class collector {
 public:
  collector(const gxi_kicad_members_t& members, gxi_groups_t& groups)
      : members_(members), sheet_(members.sheet), file_(members.file), groups_(groups) {}

  gxi_kicad_joined_t run() {
    collect();
    name_nets();
    hand_up();
    mark_unconnected();
    return std::move(result_);
  }

 private:
  int net(int member, int line) {
    const auto [number, is_new] = numbers_.of(groups_.root(member));
    if (is_new) result_.nets.push_back({.line = line});
    return number;
  }

  void collect() {
    for (std::size_t i = 0; i < file_.wires.size(); ++i)
      result_.of_wire.push_back(net(members_.wire(i), file_.wires[i].line));
    for (std::size_t i = 0; i < file_.entries.size(); ++i)
      result_.of_entry.push_back(net(members_.entry(i), file_.entries[i].line));
    result_.of_pin.resize(sheet_.pins.size());
    members_.each_pin([&](std::size_t i, const auto&, int member) {
      result_.of_pin[i].push_back(net(member, file_.placed[i].line));
    });
    result_.of_block.resize(members_.pin_buses.size());
    members_.each_block_pin([&](std::size_t i, std::size_t pin, const auto& bus, int first) {
      auto& members = result_.of_block[i].emplace_back();
      const int end = first + std::max(static_cast<int>(bus.members.size()), 1);
      for (int member = first; member < end; ++member)
        members.push_back(net(member, file_.blocks[i].pins[pin].text.line));
    });
    result_.of_label.resize(file_.labels.size(), -1);
    for (const auto i : members_.net_labels)
      result_.of_label[i] = net(members_.label(i), file_.labels[i].text.line);
  }

  void give(int member, const std::string& text, int priority, int line) {
    auto& net_of = gx_at(result_.nets, net(member, line));
    if (strength_.size() < result_.nets.size()) strength_.resize(result_.nets.size());
    auto& strength = gx_at(strength_, &net_of - result_.nets.data());
    if (priority > strength || (priority == strength && text < net_of.name)) {
      strength = priority;
      net_of.name = text;
    }
    if (priority == gxi_of_global) net_of.globals.push_back(text);
  }

  void name_nets() {
    for (const auto i : members_.net_labels)
      give(members_.label(i), sheet_.labels[i], gxi_kicad_strength(file_.labels[i].kind),
           file_.labels[i].text.line);
    for (const auto i : members_.bus_labels)
      for (const auto& member : members_.label_buses[i].members)
        give(members_.name(member), member, gxi_kicad_strength(file_.labels[i].kind),
             file_.labels[i].text.line);
    members_.each_pin([&](std::size_t i, const auto& pin, int member) {
      if (!pin.power.empty())
        give(member, pin.power, pin.everywhere ? gxi_of_global : gxi_of_local,
             file_.placed[i].line);
    });
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
          if (const auto pins = members_.block_ports(i, port);
              !pins.empty() && !below.globals.empty())
            take_globals(pins.front(), below, from, file_.blocks[i].line);
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
    for (const auto& global : below.globals) give(member, global, gxi_of_global, line);
  }

  void hand_up() {
    for (std::size_t i = 0; i < file_.labels.size(); ++i) {
      if (file_.labels[i].kind != gxi_kicad_label::hierarchical) continue;
      const auto& members = members_.label_buses[i].members;
      const int line = file_.labels[i].text.line;
      if (members.empty() && !sheet_.labels[i].empty())
        add_port(net(members_.label(i), line), i, 0);
      for (std::size_t k = 0; k < members.size(); ++k)
        add_port(net(members_.name(members[k]), line), i, static_cast<int>(k));
    }
  }
  void add_port(int index, std::size_t label, int member) {
    gxi_kicad_port_t port{sheet_.labels[label], member};
    if (ports_.insert(port).second) gx_at(result_.nets, index).ports.push_back(std::move(port));
  }

  void mark_unconnected() {
    std::map<gxi_kicad_point_t, int> nets;
    members_.each_pin([&](std::size_t i, const auto& pin, int member) {
      nets.emplace(pin.at, net(member, file_.placed[i].line));
    });
    for (std::size_t i = 0; i < file_.wires.size(); ++i)
      for (const auto at : {file_.wires[i].from, file_.wires[i].to})
        nets.emplace(at, result_.of_wire[i]);
    for (const auto& at : file_.no_connects)
      if (const auto net_of = nets.find(at); net_of != nets.end())
        gx_at(result_.nets, net_of->second).no_connect = true;
  }

  const gxi_kicad_members_t& members_;
  const gxi_kicad_sheet_t& sheet_;
  const gxi_kicad_file_t& file_;
  gxi_groups_t& groups_;
  gxi_group_numbers_t numbers_{};
  std::set<gxi_kicad_port_t> ports_{};
  std::vector<int> strength_{};  // by net: of its name
  gxi_kicad_joined_t result_{};
};

}  // namespace

gxi_kicad_joined_t gxi_kicad_join(const gxi_kicad_sheet_t& sheet) {
  const gxi_kicad_members_t members(sheet);
  gxi_groups_t groups(members.count());
  gxi_kicad_join_wires(members, groups);
  gxi_kicad_join_buses(members, groups);
  return collector(members, groups).run();
}

gxi_kicad_face_t gxi_kicad_face(const gxi_kicad_joined_t& joined) {
  gxi_kicad_face_t face;
  for (const auto& net : joined.nets)
    if (!net.ports.empty()) face.nets.push_back({net.ports, net.globals});
  return face;
}
