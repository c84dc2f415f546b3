#include "expand/explain.h"

#include <algorithm>

#include "gx/text/at.h"

namespace {

std::string handle(std::string_view head, int id) { return std::string(head) + std::to_string(id); }

const kv_sheet_net_t& net_at(const kv_sheet_t& sheet, std::int32_t place) {
  return gx_at(sheet.nets, place);
}

// The net of that object; -1 when the sheet has none.
std::int32_t net_of_object(const kv_sheet_t& sheet, int object_id) {
  const auto at = std::ranges::find(sheet.nets, object_id, &kv_sheet_net_t::object_id);
  return at == sheet.nets.end() ? -1 : static_cast<std::int32_t>(at - sheet.nets.begin());
}

// The first global of the sheet that gives a group, no bus, its flat net; null when none does.
const kv_sheet_global_t* global_of(const kv_sheet_t& sheet, std::int32_t group) {
  if (gx_at(sheet.groups, group).width > 0) return nullptr;
  const auto at = std::ranges::find_if(
      sheet.globals, [&](const auto& global) { return global.usable && global.group == group; });
  return at == sheet.globals.end() ? nullptr : &*at;
}

std::string global_words(const kv_sheet_t& sheet, const kv_sheet_global_t& global) {
  return "global " + std::string(sheet.view(global.name)) + ", instance " +
         handle("I_", global.object_id);
}

std::string join_words(const kv_sheet_t& sheet, const kv_join_t& join, std::int32_t other) {
  const std::string other_net = handle("N_", net_at(sheet, other).object_id);
  switch (join.why) {
    case kv_join_why::name:
      return "same NET name as " + other_net;
    case kv_join_why::port_name:
      return "same port name as " + other_net;
    case kv_join_why::vertex:
      break;
  }
  return (join.is_pin ? "shared pin P_" : "shared vertex ") + std::to_string(join.object);
}

}  // namespace

// A drawn net in its sheet.
struct kv_explainer_t::place_t {
  const kv_sheet_t& sheet;
  std::int32_t visit;
  std::int32_t net;  // place in the sheet's list of nets
  std::int32_t group_ind;
  const kv_sheet_group_t& group() const { return gx_at(sheet.groups, group_ind); }
};

const std::vector<std::int32_t>& kv_explainer_t::nets_by_id(const kv_sheet_t& sheet) {
  const auto [at, is_new] = by_id_.try_emplace(&sheet);
  if (is_new) at->second = kv_places_by_id(sheet.nets);
  return at->second;
}

kv_explainer_t::place_t kv_explainer_t::place_of(const kv_drawn_t& drawn) {
  const kv_sheet_t& of = sheet(drawn.visit);
  const std::int32_t net = gx_at(nets_by_id(of), drawn.object_id);
  return {of, drawn.visit, net, net_at(of, net).group};
}

// --- what is drawn

// Whether a flat net was saved for a net of a sheet and has its object: not so the members of a
// bus, and what a global brought.
bool kv_explainer_t::is_saved_by_net(std::int32_t net) const {
  if (netlist_.bus(net) != 0) return false;
  const kv_sheet_t& of = sheet(kv_visit_of_net(origins_, net));
  const std::int32_t place = net_of_object(of, netlist_.object_id({kv_named::net, net}));
  return place >= 0 && global_of(of, net_at(of, place).group) == nullptr;
}

void kv_explainer_t::add_drawn(std::int32_t net, std::vector<kv_drawn_t>& drawn) const {
  if (is_saved_by_net(net))
    drawn.push_back(
        {kv_visit_of_net(origins_, net), netlist_.object_id({kv_named::net, net}), net, 0});
  std::int32_t visit = -1, after = 0;  // children of a visit follow one another
  for (const std::int32_t child : netlist_.children(net)) {
    if (visit < 0 || child > after) {
      visit = kv_visit_of_child(origins_, child);
      const auto next = static_cast<std::size_t>(visit) + 1;
      after = next < origins_.visits.size() ? origins_.visits[next].children_before
                                            : netlist_.count(kv_named::net_child);
    }
    drawn.push_back({visit, netlist_.object_id({kv_named::net_child, child}), net, child});
  }
}

std::vector<kv_drawn_t> kv_explainer_t::drawn(std::int32_t net) const {
  std::vector<kv_drawn_t> result;
  if (const std::int32_t bus = netlist_.bus(net); bus != 0) {
    add_drawn(bus, result);
    const std::int32_t bit = netlist_.bit(net);
    std::erase_if(result, [&](const kv_drawn_t& each) { return !has_bit(each, bit); });
  }
  add_drawn(net, result);
  return result;
}

// When a net was joined to those of its group on its sheet.
std::size_t kv_explainer_t::order_of(std::int32_t net, const kv_drawn_t& drawn) {
  if (drawn.net != net) return 0;  // of the bus that it is a bit of
  const place_t place = place_of(drawn);
  std::int32_t root = 0;
  root_words(net, drawn, place, root);
  const auto& reasons = group_reasons(place.sheet, root);
  const auto at = reasons.find(place.net);
  return at == reasons.end() ? 0 : at->second.order;
}

std::vector<kv_drawn_t> kv_explainer_t::joined(std::int32_t net) {
  std::vector<kv_drawn_t> result = drawn(net);
  // The nets of a visit follow one another.
  std::vector<std::pair<std::size_t, kv_drawn_t>> ordered;
  for (auto from = result.begin(); from != result.end();) {
    const auto to = std::find_if(from, result.end(), [&](const auto& each) {
      return each.visit != from->visit || each.net != from->net;
    });
    if (to - from > 1) {
      ordered.clear();
      for (auto each = from; each != to; ++each) ordered.emplace_back(order_of(net, *each), *each);
      std::ranges::stable_sort(ordered, {}, &std::pair<std::size_t, kv_drawn_t>::first);
      std::ranges::transform(ordered, from, &std::pair<std::size_t, kv_drawn_t>::second);
    }
    from = to;
  }
  return result;
}

// Whether a net that is a bus, or a part of one brought by a port, holds that bit of it.
bool kv_explainer_t::has_bit(const kv_drawn_t& drawn, std::int32_t bit) const {
  if (drawn.child == 0 || netlist_.child_kind(drawn.child) != kv_kind_port) return true;
  const kv_sheet_t& of = sheet(drawn.visit);
  const std::int32_t net = net_of_object(of, drawn.object_id);
  if (net < 0) return false;
  const auto& group = gx_at(of.groups, net_at(of, net).group);
  const kv_object_t pin = pin_into(drawn.visit, group.port);
  const std::int32_t first = netlist_.net_first_bit(pin);
  return pin.index != 0 && bit >= first && bit < first + group.width;
}

// --- words

// The pin of the block that a port of its sheet stands for; none when there is none.
kv_object_t kv_explainer_t::pin_into(std::int32_t visit, std::int32_t port) const {
  constexpr kv_object_t none{kv_named::pinm, 0};
  const kv_visit_t& here = gx_at(origins_.visits, visit);
  if (here.above < 0 || port < 0) return none;
  const kv_object_t macro{kv_named::macro, here.macro};
  const kv_sheet_t& above = sheet(here.above);
  const auto inst =
      std::ranges::find(above.insts, netlist_.object_id(macro), &kv_sheet_inst_t::object_id);
  if (inst == above.insts.end() || inst->port_pins < 0) return none;
  const std::int32_t pin = gx_at(above.port_pins, inst->port_pins + port);
  return pin < 0 ? none : netlist_.pin(macro, pin);
}

std::string kv_explainer_t::bit_words(std::int32_t net) const {
  const std::int32_t bus = netlist_.bus(net);
  if (bus == 0) return "";
  return "bit " + std::to_string(netlist_.bit(net)) + " of bus " + std::string(netlist_.name(bus));
}

std::string kv_explainer_t::port_words(std::int32_t net, const place_t& place) const {
  const auto& port = gx_at(place.sheet.ports, place.group().port);
  const kv_object_t pin = pin_into(place.visit, place.group().port);
  std::string words = "port " + std::string(place.sheet.view(port.name)) + " of " +
                      std::string(kv_visit_path(netlist_, origins_, place.visit));
  if (pin.index == 0) return words;
  words += ", pin " + std::string(netlist_.path(pin));
  const std::int32_t width = place.group().width;
  if (netlist_.bus(net) != 0) {
    words += ", " + bit_words(net);
  } else if (width < netlist_.width(net)) {
    const std::int32_t first = netlist_.net_first_bit(pin);
    words += ", bits " + std::to_string(first) + " to " + std::to_string(first + width - 1) +
             " of bus " + std::string(netlist_.name(net));
  }
  return words;
}

// A net that meets a global only inside a block on its sheet.
std::string kv_explainer_t::tied_words(const place_t& place) const {
  const std::int32_t tied = place.group().tied_global;
  if (tied < 0) return "";
  const std::string name = gx_at(origins_.sheets->globals, tied).nvalue;
  const std::string path(kv_visit_path(netlist_, origins_, place.visit));
  for (const auto& inst : place.sheet.insts) {
    if (inst.is_primitive || inst.port_pins < 0) continue;
    const auto& symbol = gx_at(place.sheet.symbols, inst.symbol);
    const kv_sheet_t& below = gx_at(origins_.sheets->components, symbol.component)->sheet;
    for (std::size_t i = 0; i < below.ports.size(); ++i) {
      const std::int32_t pin_place =
          gx_at(place.sheet.port_pins, inst.port_pins + static_cast<std::int32_t>(i));
      const std::int32_t inner = below.ports[i].group;
      if (pin_place < 0 || inner < 0) continue;
      const auto& pin = gx_at(place.sheet.pins, inst.first_pin + pin_place);
      if (pin.group != place.group_ind || gx_at(below.groups, inner).tied_global != tied) continue;
      const std::string block = path + std::string(place.sheet.view(inst.suffix));
      return "global " + name + " inside " + block + ", pin " + block +
             std::string(place.sheet.view(pin.suffix));
    }
  }
  return "global " + name;
}

// What gave the group of a drawn net its flat net, and in `root` the net that it came by.
std::string kv_explainer_t::root_words(std::int32_t net, const kv_drawn_t& drawn,
                                       const place_t& place, std::int32_t& root) const {
  const auto& group = place.group();
  root = group.master;
  if (drawn.child != 0 && netlist_.child_kind(drawn.child) == kv_kind_port && group.port >= 0) {
    root = gx_at(place.sheet.ports, group.port).net;
    return port_words(net, place);
  }
  if (const auto* global = global_of(place.sheet, place.group_ind)) {
    root = global->net;
    return global_words(place.sheet, *global);
  }
  const bool is_saved_here =
      kv_visit_of_net(origins_, net) == place.visit &&
      netlist_.object_id({kv_named::net, net}) == net_at(place.sheet, group.master).object_id;
  return is_saved_here ? "" : tied_words(place);
}

const kv_explainer_t::group_reasons_t& kv_explainer_t::group_reasons(const kv_sheet_t& sheet,
                                                                     std::int32_t root) {
  const auto [at, is_new] = reasons_.try_emplace({&sheet, root});
  auto& reasons = at->second;
  if (!is_new) return reasons;
  std::multimap<std::int32_t, const kv_join_t*> joins;
  for (const auto& join : sheet.joins) {
    if (net_at(sheet, join.a).group != net_at(sheet, root).group) continue;
    joins.emplace(join.a, &join);
    joins.emplace(join.b, &join);
  }
  std::vector<std::int32_t> reached{root};
  reasons[root] = {"", 0};
  for (std::size_t i = 0; i < reached.size(); ++i) {
    const std::int32_t from = reached[i];
    const auto [first, last] = joins.equal_range(from);
    for (auto join = first; join != last; ++join) {
      const std::int32_t to = join->second->a == from ? join->second->b : join->second->a;
      const bool is_first =
          reasons.try_emplace(to, joined_t{join_words(sheet, *join->second, from), reached.size()})
              .second;
      if (!is_first) continue;
      reached.push_back(to);
    }
  }
  return reasons;
}

std::string kv_explainer_t::reason(std::int32_t net, const kv_drawn_t& drawn) {
  const place_t place = place_of(drawn);
  if (drawn.net != net) {  // the bus that it is a bit of
    const std::int32_t position = netlist_.position(net);
    const auto named = std::ranges::find_if(place.sheet.globals, [&](const auto& global) {
      return global.usable && global.net == place.net && global.position == position &&
             place.group().width > 0;
    });
    return (named == place.sheet.globals.end() ? "" : global_words(place.sheet, *named) + ", ") +
           bit_words(net);
  }
  std::int32_t root = 0;
  const std::string words = root_words(net, drawn, place, root);
  if (root == place.net) return words;
  const auto& reasons = group_reasons(place.sheet, root);
  const auto at = reasons.find(place.net);
  return at == reasons.end() ? words : at->second.words;
}
