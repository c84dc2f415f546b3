#include "deck/write/groups.h"

#include <algorithm>
#include <set>

#include "gx/text/strings.h"

dk_groups_t::dk_groups_t(const dk_sources_t& sources, dk_elements_t& elements,
                         const dk_names_of_nets_t& names)
    : visits_(sources.visits),
      netlist_(visits_.netlist()),
      elements_(elements),
      names_(names),
      is_lvs_(sources.options.lvs),
      group_of_(static_cast<std::size_t>(visits_.count()), -1),
      bit_of_pin_(static_cast<std::size_t>(netlist_.count(kv_named::pin)) + 1),
      bit_of_block_pin_(static_cast<std::size_t>(netlist_.count(kv_named::pinm)) + 1) {
  for (std::int32_t net = 1; net <= netlist_.count(kv_named::net); ++net)
    if (netlist_.net_kind(net) == kv_kind_global)
      is_global_.try_emplace(gx_upper(names_.of(net)), false);
  instances_ = visits_.instances();
  find_group(0);
  for (auto& group : groups_) join(group);
  for (auto& group : groups_) {
    name_nodes(group);
    find_directions(group);
  }
}

std::int32_t dk_groups_t::find_group(std::int32_t visit) {
  for (const auto& object : gx_at(instances_, visit))
    if (object.what == kv_named::macro) find_group(object.index);
  const auto [found, is_new] =
      by_key_.try_emplace(key_of(visit), static_cast<std::int32_t>(groups_.size()));
  if (is_new) {
    auto& group = groups_.emplace_back();
    group.instances = gx_at(instances_, visit);
    group.visits.push_back(visit);
    name_group(group);
  } else {
    gx_at(groups_, found->second).visits.push_back(visit);
  }
  return gx_at(group_of_, visit) = found->second;
}

std::string dk_groups_t::key_of(std::int32_t visit) {
  if (visit == 0) return "/";
  std::string key(visits_.at(visit).directory);
  for (const auto& [name, value] : *visits_.at(visit).values)
    key.append("\n").append(name).append("=").append(value);
  for (const auto& object : gx_at(instances_, visit)) {
    key.append("\n").append(netlist_.path(object).substr(visits_.at(visit).path.size()));
    if (object.what == kv_named::macro) {
      key.append(" ").append(std::to_string(group_of(object.index)));
    } else {
      elements_.look_at(visits_.of_leaf(object.index));
      key.append(elements_.values_of(object.index));
    }
  }
  return key;
}

void dk_groups_t::name_group(dk_group_t& group) {
  const auto& visit = visits_.at(group.visits.front());
  const auto* const cell = dk_cell_of(visits_, visit.macro);
  group.name = cell != nullptr && !cell->subcircuit.empty() ? cell->subcircuit
                                                            : std::string(visit.directory);
  const int number = ++named_[gx_upper(group.name)];
  if (number > 1) group.name += "__" + std::to_string(number);
}

std::vector<std::int32_t> dk_groups_t::nets_of(std::int32_t visit) const {
  std::vector<std::int32_t> nets;
  const auto take = [&](kv_object_t owner) {
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(owner); ++k) {
      const auto pin = netlist_.pin(owner, k);
      const auto bits = netlist_.bits(pin);
      const bool joined = netlist_.net(pin) != 0;
      for (std::int32_t bit = 0; bit < bits.count; ++bit)
        nets.push_back(joined && bits.net(bit) != 0 ? names_.node(bits.net(bit)) : 0);
    }
  };
  if (visit != 0) take({kv_named::macro, visit});
  for (const auto& object : gx_at(instances_, visit)) take(object);
  return nets;
}

void dk_groups_t::join(dk_group_t& group) {
  // Names of ports, and where the bits of each pin are.
  std::int32_t at = 0;
  const auto place = [&](kv_object_t owner, bool is_port) {
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(owner); ++k) {
      const auto pin = netlist_.pin(owner, k);
      if (!is_port)
        gx_at(pin.what == kv_named::pin ? bit_of_pin_ : bit_of_block_pin_, pin.index) = at;
      const auto width = netlist_.bits(pin).count;
      at += width;
      if (!is_port) continue;
      const std::string name(netlist_.pin_name(pin));
      const bool falls = netlist_.last_bit(pin) < netlist_.first_bit(pin);
      for (std::int32_t bit = 0; bit < width; ++bit)
        group.ports.push_back(
            width == 1 ? name
                       : name.substr(0, name.find('[')) + "_" +
                             std::to_string(netlist_.first_bit(pin) + (falls ? -bit : bit)));
    }
  };
  const std::int32_t first = group.visits.front();
  if (first != 0) place({kv_named::macro, first}, true);
  for (const auto& object : group.instances) place(object, false);

  // All that is on one net in the first visit is one node, but for what another visit keeps apart.
  std::vector<std::vector<std::int32_t>> nets;
  for (const std::int32_t visit : group.visits) nets.push_back(nets_of(visit));
  group.nets = nets.front();
  const auto size = group.nets.size();
  group.same_as.resize(size);
  std::vector<bool> open(size);
  for (std::size_t bit = 0; bit < group.ports.size(); ++bit)
    open[bit] = std::ranges::any_of(nets, [&](const auto& of) { return of[bit] == 0; });
  // A simulator takes a port that has the name of a global for the global.
  for (std::size_t port = 0; port < group.ports.size(); ++port) {
    std::string& name = group.ports[port];
    const auto is_global = [&](const auto& of) {
      return of[port] != 0 && gx_iden(names_.of(of[port]), name);
    };
    if (is_global_.contains(gx_upper(name)) && !std::ranges::all_of(nets, is_global)) name += "::1";
  }
  std::unordered_map<std::int64_t, std::int32_t> first_with;
  for (const auto& of : nets) {
    bool differs = &of == &nets.front();
    for (std::size_t bit = 0; bit < size && !differs; ++bit)
      differs = !open[bit] && of[bit] != of[static_cast<std::size_t>(group.same_as[bit])];
    if (!differs) continue;
    first_with.clear();
    for (std::size_t bit = 0; bit < size; ++bit) {
      const auto number = static_cast<std::int32_t>(bit);
      if (open[bit] || of[bit] == 0) {
        group.same_as[bit] = number;
        continue;
      }
      const std::int64_t before = group.same_as[bit];
      group.same_as[bit] = first_with.try_emplace((before << 32) | of[bit], number).first->second;
    }
  }
  settle_open_ports(group, nets);
}

// The nets in a visit that its ports, by bit, are on there; 0 where none has their name.
std::vector<std::int32_t> dk_groups_t::nets_within(std::int32_t visit) const {
  std::vector<std::int32_t> nets;
  const kv_object_t block{kv_named::macro, visit};
  for (std::int32_t k = 0; k < netlist_.nb_of_pins(block); ++k) {
    const auto pin = netlist_.pin(block, k);
    const auto width = netlist_.bits(pin).count;
    const auto name = netlist_.pin_name(pin);
    const auto net = visits_.net(visit, name.substr(0, name.find('[')));
    const bool is_bus = net != 0 && netlist_.is_bus(net);
    const auto members = is_bus ? netlist_.width(net) : 1;
    for (std::int32_t bit = 0; bit < width; ++bit)
      nets.push_back(net == 0 || bit >= members
                         ? 0
                         : names_.node(is_bus ? netlist_.first_member(net) + bit : net));
  }
  return nets;
}

// A port that some visits leave open is joined to what it is joined to in all the others; one that
// all leave open to the net in them that has its name.
void dk_groups_t::settle_open_ports(dk_group_t& group,
                                    const std::vector<std::vector<std::int32_t>>& nets) {
  std::vector<std::int32_t> within;
  for (std::size_t port = 0; port < group.ports.size(); ++port) {
    const auto joined = std::ranges::find_if(nets, [&](const auto& of) { return of[port] != 0; });
    const bool is_open = std::ranges::any_of(nets, [&](const auto& of) { return of[port] == 0; });
    if (!is_open) continue;
    if (joined == nets.end() && within.empty()) within = nets_within(group.visits.front());
    const auto& of_joined = joined == nets.end() ? nets.front() : *joined;
    const std::int32_t net = joined == nets.end() ? within[port] : of_joined[port];
    if (net == 0) continue;
    for (std::size_t bit = group.ports.size(); bit < group.nets.size(); ++bit) {
      if (group.same_as[bit] != static_cast<std::int32_t>(bit) || of_joined[bit] != net) continue;
      if (!std::ranges::all_of(
              nets, [&](const auto& of) { return of[port] == 0 || of[port] == of[bit]; }))
        continue;
      for (auto& same : group.same_as)
        if (same == static_cast<std::int32_t>(bit)) same = static_cast<std::int32_t>(port);
      group.nets[port] = group.nets[bit];
      break;
    }
  }
}

// "/x1/x2/n" in the visit "/x1" is "x2:n".
std::string dk_groups_t::local_name(const dk_group_t& group, std::int32_t net) const {
  const auto path = netlist_.path({kv_named::net, net});
  const auto within = visits_.at(group.visits.front()).path;
  if (path.size() <= within.size() + 1 || !path.starts_with(within)) return names_.of(net);
  std::string name(path.substr(within.size() + 1));
  std::ranges::replace(name, '/', ':');
  return name;
}

void dk_groups_t::name_nodes(dk_group_t& group) {
  const bool at_top = group.visits.front() == 0;
  std::set<std::string> taken;
  group.nodes.resize(group.same_as.size());
  for (auto& port : group.ports) {
    for (int number = 2; !taken.insert(gx_upper(port)).second; ++number)
      port += "::" + std::to_string(number);
  }
  for (std::size_t bit = 0; bit < group.same_as.size(); ++bit) {
    auto& node = gx_at(group.nodes, group.same_as[bit]);
    const std::int32_t net = group.nets[bit];
    if (bit < group.ports.size()) {
      if (node.empty()) node = group.ports[bit];
      continue;
    }
    if (!node.empty() || net == 0) continue;
    const std::string whole = names_.of(net);
    if (netlist_.net_kind(net) == kv_kind_global || whole == "0") {
      node = whole;
      if ((whole != "0" || is_lvs_) && !std::exchange(is_global_[gx_upper(whole)], true))
        globals_.push_back(whole);
      continue;
    }
    node = at_top ? whole : local_name(group, net);
    const auto is_free = [&] {
      return (at_top || !is_global_.contains(gx_upper(node))) &&
             taken.insert(gx_upper(node)).second;
    };
    if (!is_free()) {
      node += "::" + std::to_string(bit);
      taken.insert(gx_upper(node));
    }
  }
}

// What drives a port, as the pins on it say.
void dk_groups_t::find_directions(dk_group_t& group) {
  std::vector<bool> in(group.nodes.size()), out(group.nodes.size());
  for (const auto& object : group.instances)
    for (std::int32_t k = 0; k < netlist_.nb_of_pins(object); ++k) {
      const auto pin = netlist_.pin(object, k);
      const bool leaf = pin.what == kv_named::pin;
      const auto first = gx_at(leaf ? bit_of_pin_ : bit_of_block_pin_, pin.index);
      for (std::int32_t bit = 0; bit < netlist_.bits(pin).count; ++bit) {
        const auto node = static_cast<std::size_t>(gx_at(group.same_as, first + bit));
        char direction = 'B';
        if (leaf) {
          const auto type = netlist_.io_type(pin);
          direction = type == kv_io_in ? 'I' : type == kv_io_out ? 'O' : 'B';
        } else {
          const auto& called = gx_at(groups_, group_of(object.index));
          const auto start = gx_at(bit_of_block_pin_, netlist_.pin(object, 0).index);
          direction = gx_at(called.directions, first + bit - start);
        }
        in[node] = in[node] || direction != 'O';
        out[node] = out[node] || direction != 'I';
      }
    }
  for (std::size_t bit = 0; bit < group.ports.size(); ++bit) {
    const auto node = static_cast<std::size_t>(group.same_as[bit]);
    group.directions.push_back(in[node] && out[node] ? 'B' : out[node] ? 'O' : 'I');
  }
}

std::string_view dk_groups_t::node(const dk_group_t& group, kv_object_t pin,
                                   std::int32_t bit) const {
  const auto first = gx_at(pin.what == kv_named::pin ? bit_of_pin_ : bit_of_block_pin_, pin.index);
  return gx_at(group.nodes, gx_at(group.same_as, first + bit));
}
