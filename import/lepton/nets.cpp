// Members of groups are wires, pins, and links of pins that nobody drew.
#include "import/lepton/nets.h"

#include <algorithm>

#include "gx/text/at.h"
#include "import/drawing/joining.h"
#include "import/drawing/placement.h"
#include "import/lepton/picture.h"

namespace {

gx_pointreal_t shifted_end(gxi_lepton_point_t p, gxi_lepton_point_t by) {
  return gxi_lepton_point({p.x + by.x, p.y + by.y});
}

class joiner {
 public:
  joiner(const std::vector<gxi_lepton_placed_t>& components,
         const std::vector<gxi_lepton_wire_t>& wires)
      : components_(components),
        wires_(wires),
        members_(number(components, wires.size())),
        groups_(members_.count()) {}

  gxi_lepton_nets_t run(const gxi_lepton_joined_t& joined, bool netname_wins) {
    join_by_place();
    for (std::size_t i = 0; i < joined.size(); ++i)
      for (const auto& [a, b] : joined[i]) groups_.join(pin_member(i, a), pin_member(i, b));
    take_names();
    collect(netname_wins);
    return std::move(result_);
  }

 private:
  static gxi_members_t number(const std::vector<gxi_lepton_placed_t>& components,
                              std::size_t nb_of_wires) {
    gxi_members_t members(nb_of_wires);
    for (const auto& component : components)
      members.add_component(component.pins.size() + component.links.size());
    return members;
  }
  int pin_member(std::size_t component, std::size_t pin) const {
    return members_.of(component, pin);
  }
  int hidden_member(std::size_t component, std::size_t link) const {
    return pin_member(component, components_[component].pins.size() + link);
  }
  bool takes_part(std::size_t component) const {
    return components_[component].role != gxi_lepton_role_t::picture;
  }

  void join_by_place() {
    std::vector<gxi_span_t> spans;
    std::vector<gxi_met_pin_t> pins;
    for (const auto& wire : wires_)
      spans.push_back(
          {shifted_end(wire.net->from, wire.shift), shifted_end(wire.net->to, wire.shift)});
    for (std::size_t i = 0; i < components_.size(); ++i)
      for (std::size_t pin = 0; takes_part(i) && pin < components_[i].pins.size(); ++pin)
        pins.push_back({gxi_lepton_tip(components_[i], pin), pin_member(i, pin)});
    gxi_join_places(groups_, spans, pins, false);
  }

  // Within a sheet a name is one net, wherever it comes from.
  void take_names() {
    for (std::size_t i = 0; i < wires_.size(); ++i)
      for (const auto name : gxi_lepton_values(wires_[i].net->attributes, "netname"))
        give(static_cast<int>(i), name, false);
    for (std::size_t i = 0; i < components_.size(); ++i) {
      const auto& placed = components_[i];
      if (!takes_part(i)) continue;
      for (std::size_t pin = 0; pin < placed.pins.size(); ++pin)
        if (const auto* const link = placed.link_of(pin)) give(pin_member(i, pin), link->net, true);
      const auto hidden = placed.hidden_links();
      for (std::size_t k = 0; k < hidden.size(); ++k)
        if (placed.role == gxi_lepton_role_t::part) give(hidden_member(i, k), hidden[k]->net, true);
    }
  }

  void give(int member, std::string_view name, bool of_link) {
    if (name.empty()) return;
    const auto [found, is_new] = by_name_.emplace(std::string(name), named_t{member});
    if (!is_new) groups_.join(found->second.member, member);
    (of_link ? found->second.by_link : found->second.by_wire) = true;
  }

  void collect(bool netname_wins) {
    gxi_group_numbers_t groups;
    const auto net = [&](int member, const gxm_source_t& where) {
      const auto group = groups.of(groups_.root(member));
      if (group.is_new) result_.nets.push_back({.source = where});
      return group.number;
    };
    for (std::size_t i = 0; i < wires_.size(); ++i)
      result_.of_wire.push_back(
          net(static_cast<int>(i), {wires_[i].file, wires_[i].net->line.number}));
    for (std::size_t i = 0; i < components_.size(); ++i) {
      const auto& placed = components_[i];
      auto& pins = result_.of_pin.emplace_back();
      auto& links = result_.of_hidden.emplace_back();
      if (!takes_part(i)) continue;
      for (std::size_t pin = 0; pin < placed.pins.size(); ++pin)
        pins.push_back(net(pin_member(i, pin), placed.source()));
      if (placed.role != gxi_lepton_role_t::part) continue;
      for (std::size_t k = 0; k < placed.hidden_links().size(); ++k)
        links.push_back(net(hidden_member(i, k), placed.source()));
    }
    // In the order of their letters; those of the winning attribute before the others.
    result_.names.resize(result_.nets.size());
    for (const bool winning : {true, false})
      for (const auto& [name, named] : by_name_) {
        const bool wins = netname_wins ? named.by_wire : named.by_link;
        if (wins == winning)
          gx_at(result_.names, net(named.member, {}))
              .push_back({name, named.by_link, named.by_wire});
      }
    for (std::size_t i = 0; i < result_.nets.size(); ++i)
      if (!result_.names[i].empty()) result_.nets[i].name = result_.names[i].front().name;
  }

  struct named_t {
    int member = 0;
    bool by_link = false, by_wire = false;
  };

  const std::vector<gxi_lepton_placed_t>& components_;
  const std::vector<gxi_lepton_wire_t>& wires_;
  gxi_members_t members_;
  gxi_groups_t groups_;
  std::map<std::string, named_t> by_name_;
  gxi_lepton_nets_t result_;
};

}  // namespace

gx_pointreal_t gxi_lepton_tip(const gxi_lepton_placed_t& placed, std::size_t pin) {
  gxi_instance_t instance;
  instance.at = shifted_end(placed.component->at, placed.shift);
  instance.rotate = static_cast<std::uint8_t>(placed.component->rotate);
  instance.mirror = placed.component->mirror;
  return gxi_on_sheet(instance, gxi_lepton_point(placed.pins[pin]->tip));
}

gxi_lepton_nets_t gxi_lepton_join(const std::vector<gxi_lepton_placed_t>& components,
                                  const std::vector<gxi_lepton_wire_t>& wires,
                                  const gxi_lepton_joined_t& joined, bool netname_wins) {
  return joiner(components, wires).run(joined, netname_wins);
}
