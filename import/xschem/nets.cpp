// Joining by place, naming by labels, and splitting bundles into single nets.
#include "import/xschem/nets.h"

#include <algorithm>

#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/drawing/joining.h"
#include "import/drawing/names.h"
#include "import/xschem/labels.h"
#include "import/xschem/picture.h"

namespace {

class joiner {
 public:
  joiner(const std::vector<gxi_xschem_placed_t>& components,
         const std::vector<const gxi_xschem_shape_t*>& wires, std::string_view file,
         gxm_messages_t& messages)
      : components_(components),
        wires_(wires),
        file_(file),
        messages_(messages),
        members_(number(components, wires.size())),
        groups_(members_.count()) {}

  gxi_xschem_nets_t run() {
    join_by_place();
    name_by_labels();
    read_port_labels();
    count_bits();
    name_by_taps();
    collect();
    name_by_numbers();
    return std::move(result_);
  }

 private:
  static gxi_members_t number(const std::vector<gxi_xschem_placed_t>& components,
                              std::size_t nb_of_wires) {
    gxi_members_t members(nb_of_wires);
    for (const auto& component : components) members.add_component(component.pins.size());
    return members;
  }
  int member(std::size_t component, std::size_t pin) const { return members_.of(component, pin); }
  gxm_source_t source(const gxi_xschem_placed_t& placed) const {
    return {file_, placed.component->line};
  }

  void join_by_place() {
    std::vector<gxi_span_t> spans;
    std::vector<gxi_met_pin_t> pins;
    for (const auto* wire : wires_)
      spans.push_back({gxi_xschem_point(wire->points[0]), gxi_xschem_point(wire->points[1])});
    for (std::size_t i = 0; i < components_.size(); ++i) {
      const auto& placed = components_[i];
      if (placed.ignored) continue;
      for (std::size_t pin = 0; pin < placed.pins.size(); ++pin) {
        pins.push_back({placed.pins[pin], member(i, pin)});
        if (placed.shorted) groups_.join(member(i, 0), member(i, pin));
        // Pins of one name are one node, on both sides of the cell.
        const int same = placed.symbol->pins[pin].same_as;
        if (same >= 0) groups_.join(member(i, static_cast<std::size_t>(same)), member(i, pin));
      }
    }
    gxi_join_places(groups_, spans, pins, true);
  }

  // --- names: by the member that stands for a group
  void name_by_labels() {
    result_.names_its_net.assign(components_.size(), true);
    for (std::size_t i = 0; i < components_.size(); ++i) {
      const auto& placed = components_[i];
      const auto role = placed.role;
      if (placed.ignored || (role != gxi_xschem_role_t::label && role != gxi_xschem_role_t::port))
        continue;
      const std::string label(placed.value("lab"));
      if (label.empty() || placed.pins.empty()) continue;
      result_.names_its_net[i] = give(groups_.root(member(i, 0)), label, source(placed));
    }
  }

  // Where only devices of XSPICE are joined to a label, it may say how: "~B" is the net B inverted,
  // "%vd(A B)" the two nets of a difference.
  void read_port_labels() {
    std::map<int, bool> only_ports;
    for (std::size_t i = 0; i < components_.size(); ++i) {
      const auto& placed = components_[i];
      if (placed.ignored || placed.role != gxi_xschem_role_t::device) continue;
      const bool is_port = std::ranges::all_of(
          placed.devices, [](const auto& device) { return device.letter == 'A'; });
      for (std::size_t pin = 0; pin < placed.pins.size(); ++pin)
        only_ports.emplace(groups_.root(member(i, pin)), true).first->second &= is_port;
    }
    for (const auto& [group, is_port] : only_ports)
      if (const auto name = names_.find(group); is_port && name != names_.end()) {
        auto port = gxi_xschem_port_label(name->second);
        name->second = std::move(port.nets);
        around_[group] = std::move(port.around);
      }
  }

  bool give(int group, const std::string& label, const gxm_source_t& where) {
    const auto [found, is_new] = names_.emplace(group, label);
    if (is_new || found->second == label) return true;
    gxm_complain(
        messages_, where,
        "label " + label + " is on the net of label " + found->second + ", which keeps its name");
    return false;
  }

  // A tap names its own net by bits of the bus; taps may follow taps. A bus without a name has as
  // many bits as the narrowest of its pins.
  void name_by_taps() {
    std::vector<std::size_t> waiting;
    for (std::size_t i = 0; i < components_.size(); ++i)
      if (components_[i].role == gxi_xschem_role_t::bus_tap && !components_[i].ignored &&
          components_[i].pins.size() == 2)
        waiting.push_back(i);
    for (bool unnamed_too : {false, true}) {
      for (std::size_t before = waiting.size() + 1; waiting.size() < before;) {
        before = waiting.size();
        std::erase_if(waiting, [&](std::size_t i) { return tap(i, unnamed_too); });
      }
    }
  }

  bool tap(std::size_t i, bool unnamed_too) {
    const auto& placed = components_[i];
    const bool first_taps = placed.symbol->pins[0].attributes.get("name") == "tap";
    const int tapped = groups_.root(member(i, first_taps ? 0 : 1));
    const int bus = groups_.root(member(i, first_taps ? 1 : 0));
    const auto label = placed.value("lab");
    if (label.empty()) return true;
    auto name = names_.find(bus);
    if (name == names_.end()) {
      if (!unnamed_too) return false;
      const auto bits = unnamed_.find(bus);
      const auto last = bits == unnamed_.end() ? 0 : bits->second - 1;
      name =
          names_.emplace(bus, "#" + std::to_string(bus) + "[" + std::to_string(last) + ":0]").first;
    }
    names_.emplace(tapped, gxi_xschem_tapped(name->second, label));
    return true;
  }

  // Groups without a label: as many nets as the narrowest of their pins has bits.
  void count_bits() {
    std::map<int, std::size_t> bits;
    for (std::size_t i = 0; i < components_.size(); ++i) {
      const auto& placed = components_[i];
      // What is only drawn counts, too: a mark of one bit on unconnected pins joins them.
      if (placed.ignored || placed.role == gxi_xschem_role_t::bus_tap) continue;
      for (std::size_t pin = 0; pin < placed.pins.size(); ++pin) {
        const int group = groups_.root(member(i, pin));
        if (names_.contains(group)) continue;
        const auto here = placed.symbol->pins[pin].bits.size() * placed.names.size();
        const auto [found, is_new] = bits.emplace(group, here);
        if (!is_new) found->second = std::min(found->second, here);
      }
    }
    unnamed_ = std::move(bits);
  }

  void collect() {
    gxi_group_numbers_t groups;
    const auto bundle = [&](int of_member, const gxm_source_t& where) {
      const int root = groups_.root(of_member);
      const auto group = groups.of(root);
      if (group.is_new) result_.bundles.push_back({nets_of(root, where), around_[root]});
      return group.number;
    };
    for (std::size_t i = 0; i < wires_.size(); ++i)
      result_.bundle_of_wire.push_back(bundle(static_cast<int>(i), {file_, wires_[i]->line}));
    for (std::size_t i = 0; i < components_.size(); ++i) {
      auto& pins = result_.bundle_of_pin.emplace_back();
      if (components_[i].ignored) continue;
      for (std::size_t pin = 0; pin < components_[i].pins.size(); ++pin)
        pins.push_back(bundle(member(i, pin), source(components_[i])));
    }
  }

  std::vector<int> nets_of(int group, const gxm_source_t& where) {
    std::vector<int> nets;
    if (const auto name = names_.find(group); name != names_.end()) {
      nets = result_.named(name->second, where);
      // Of a tapped bus without a label.
      if (name->second.starts_with("#" + std::to_string(group) + "[")) number(nets);
      return nets;
    }
    const auto bits = unnamed_.find(group);
    for (std::size_t i = 0; i < (bits == unnamed_.end() ? 1 : bits->second); ++i) {
      nets.push_back(static_cast<int>(result_.nets.size()));
      result_.nets.push_back({.source = where});
    }
    number(nets);
    return nets;
  }

  void number(const std::vector<int>& nets) {
    const std::string name = "net" + std::to_string(++nb_of_unnamed_);
    for (std::size_t bit = nets.size(); const int net : nets)
      numbered_.emplace_back(net,
                             nets.size() == 1 ? name : name + "[" + std::to_string(--bit) + "]");
  }

  // Nets without a label have the names that a netlist of xschem gives them, net1, net2 ... in the
  // order of wires and then of components, but those that labels have.
  void name_by_numbers() {
    for (auto& [net, name] : numbered_)
      if (result_.by_name.emplace(gx_upper(name), net).second)
        gx_at(result_.nets, net).name = std::move(name);
  }

  const std::vector<gxi_xschem_placed_t>& components_;
  const std::vector<const gxi_xschem_shape_t*>& wires_;
  std::string_view file_;
  gxm_messages_t& messages_;
  gxi_members_t members_;
  gxi_groups_t groups_;
  std::map<int, std::string> names_;
  std::map<int, std::vector<std::string>> around_;
  std::map<int, std::size_t> unnamed_;
  std::size_t nb_of_unnamed_ = 0;
  std::vector<std::pair<int, std::string>> numbered_;  // nets without a label, what they are called
  gxi_xschem_nets_t result_;
};

}  // namespace

std::vector<int> gxi_xschem_nets_t::named(std::string_view label, const gxm_source_t& source) {
  std::vector<int> list;
  for (auto& name : gxi_xschem_bits(label)) {
    // A netlist for simulation does not distinguish letter cases.
    const auto [found, is_new] = by_name.emplace(gx_upper(name), static_cast<int>(nets.size()));
    if (is_new) {
      // The program's own names of unnamed nets begin with "#".
      nets.push_back({.name = name.rfind('#', 0) == 0 ? "" : name, .source = source});
    }
    list.push_back(found->second);
  }
  return list;
}

gxi_xschem_nets_t gxi_xschem_join(const std::vector<gxi_xschem_placed_t>& components,
                                  const std::vector<const gxi_xschem_shape_t*>& wires,
                                  std::string_view file, gxm_messages_t& messages) {
  return joiner(components, wires, file, messages).run();
}
