// Which nets of a sheet are one equipotential: a union-find over their segments and names.
#include "expand/sheet/net_join.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <unordered_map>

#include "gx/db/objects_of.h"
#include "gx/text/at.h"
#include "gx/text/strings.h"

kv_net_table::kv_net_table(const gx_file_gene_recf_t& file, std::span<const gx_object_id_t> nets)
    : file_(file),
      nb_of_net_(nets.size()),
      position_(static_cast<std::size_t>(file.object_id_max) + 1, -1),
      end_of_(position_.size(), -1),
      parent_(nets.size()) {
  std::iota(parent_.begin(), parent_.end(), 0);
  for (std::size_t i = 0; i < nets.size(); ++i) {
    gx_at(position_, nets[i]) = static_cast<std::int32_t>(i);
  }
  for (std::size_t i = 0; i < nets.size(); ++i) {
    const auto net = static_cast<std::int32_t>(i);
    for (const int segment : lb_segments(file, nets[i])) take_segment(net, segment);
  }
}

std::int32_t kv_net_table::named_by(int vertex_or_pin) const {
  int net = 0;
  if (const auto* vertex = gx_object_as<gx_object_vertex_rec_t>(file_, vertex_or_pin)) {
    net = vertex->net;
  } else if (const auto* pin = gx_object_as<gx_object_pinpropfam_rec_t>(file_, vertex_or_pin)) {
    net = pin->net;
  }
  return gx_object(file_, net) != nullptr ? gx_at(position_, net) : -1;
}

std::int32_t kv_net_table::net_at(int vertex_or_pin) const {
  const std::int32_t named = named_by(vertex_or_pin);
  if (named >= 0 || gx_object(file_, vertex_or_pin) == nullptr) return named;
  return gx_at(end_of_, vertex_or_pin);
}

std::int32_t kv_net_table::root(std::int32_t net) {
  while (gx_at(parent_, net) != net) {
    auto& parent = gx_at(parent_, net);
    parent = gx_at(parent_, parent);
    net = parent;
  }
  return net;
}

void kv_net_table::unite(std::int32_t a, std::int32_t b, kv_join_why why, int object) {
  const kv_join_t join{a, b, static_cast<gx_object_id_t>(object), why,
                       gx_object_as<gx_object_pinpropfam_rec_t>(file_, object) != nullptr};
  a = root(a);
  b = root(b);
  if (a == b) return;
  joins_.push_back(join);
  gx_at(parent_, std::max(a, b)) = std::min(a, b);
}

void kv_net_table::take_segment(std::int32_t net, int segment) {
  const auto* record = gx_object_as<gx_object_segment_rec_t>(file_, segment);
  for (const int end : {record->vertex1, record->vertex2}) {
    const auto* object = gx_object(file_, end);
    if (object == nullptr ||
        (object->object_type != gx_type::vertex_2d && object->object_type != gx_type::pinpropfam)) {
      continue;
    }
    if (const std::int32_t named = named_by(end); named >= 0) {
      unite(net, named, kv_join_why::vertex, end);
    }
    auto& first = gx_at(end_of_, end);
    if (first < 0) {
      first = net;
    } else {
      unite(net, first, kv_join_why::vertex, end);
    }
  }
}

kv_net_groups_t kv_net_table::join(std::span<const std::string_view> names,
                                   std::span<const kv_port_name_t> port_names) {
  using first_of_name_t = std::unordered_map<std::string, std::int32_t>;
  std::string key;
  const auto join_named = [&](first_of_name_t& first, std::string_view name, std::int32_t net,
                              kv_join_why why) {
    if (name.empty()) return;
    key.assign(name);
    std::transform(key.begin(), key.end(), key.begin(), gx_upper_case);
    const auto [at, is_new] = first.try_emplace(key, net);
    if (!is_new) unite(at->second, net, why);
  };
  first_of_name_t nets, ports;
  for (std::size_t i = 0; i < nb_of_net_; ++i)
    join_named(nets, names[i], static_cast<std::int32_t>(i), kv_join_why::name);
  for (const auto& port : port_names)
    join_named(ports, port.name, port.net, kv_join_why::port_name);

  // The root is the smallest position of its group, so it is met first.
  kv_net_groups_t groups;
  groups.joins = std::move(joins_);
  groups.group_of_net.resize(nb_of_net_);
  for (std::size_t i = 0; i < nb_of_net_; ++i) {
    const auto net = static_cast<std::int32_t>(i);
    const auto first = static_cast<std::size_t>(root(net));
    if (first == i) {
      groups.group_of_net[i] = static_cast<std::int32_t>(groups.master_of_group.size());
      groups.master_of_group.push_back(net);
      continue;
    }
    const std::int32_t group = groups.group_of_net[first];
    groups.group_of_net[i] = group;
    auto& master = gx_at(groups.master_of_group, group);
    if (gx_at(names, master).empty() && !names[i].empty()) master = net;
  }
  return groups;
}
