// Visits of one cell that can be one subcircuit: the same instances, the same values.
//
// What a subcircuit joins is found from the flat nets of its visits: two pins of instances in it,
// or ports, are one node where they are on one flat net in every visit.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "deck/write/common.h"

// The bits of pins of a visit, its ports first, then those of its instances.
struct dk_group_t {
  std::string name{};                    // of the subcircuit
  std::vector<std::int32_t> visits{};    // the first is written
  std::vector<kv_object_t> instances{};  // of the first
  std::vector<std::string> ports{};      // their names, by bit
  std::vector<char> directions{};        // of the ports: I, O or B
  std::vector<std::int32_t> nets{};      // of the first visit, by bit; 0: none
  std::vector<std::int32_t> same_as{};   // by bit: the first bit of its node
  std::vector<std::string> nodes{};      // by first bit: the name of the node
};

class dk_groups_t {
 public:
  explicit dk_groups_t(const dk_sources_t& sources, dk_elements_t& elements,
                       const dk_names_of_nets_t& names);

  // Each after those that its blocks call; the last is the primary sheet.
  const std::vector<dk_group_t>& all() const { return groups_; }
  std::int32_t group_of(std::int32_t visit) const { return gx_at(group_of_, visit); }
  // The node of a bit of a pin of an instance of a group's first visit; "" when it is on no net.
  std::string_view node(const dk_group_t& group, kv_object_t pin, std::int32_t bit) const;
  // Names of globals that were met, in order; ground, which simulators know, only for a layout.
  const std::vector<std::string>& globals() const { return globals_; }

 private:
  std::int32_t find_group(std::int32_t visit);
  std::string key_of(std::int32_t visit);
  void name_group(dk_group_t& group);
  std::vector<std::int32_t> nets_of(std::int32_t visit) const;
  std::vector<std::int32_t> nets_within(std::int32_t visit) const;
  void join(dk_group_t& group);
  void settle_open_ports(dk_group_t& group, const std::vector<std::vector<std::int32_t>>& nets);
  void name_nodes(dk_group_t& group);
  void find_directions(dk_group_t& group);
  std::string local_name(const dk_group_t& group, std::int32_t net) const;

  const dk_visits_t& visits_;
  kvi_netlist_t netlist_;
  dk_elements_t& elements_;
  const dk_names_of_nets_t& names_;
  bool is_lvs_;
  std::vector<std::vector<kv_object_t>> instances_;  // by visit
  std::vector<dk_group_t> groups_;
  std::vector<std::int32_t> group_of_;  // by visit; -1: not yet
  std::unordered_map<std::string, std::int32_t> by_key_;
  std::unordered_map<std::string, int> named_;
  std::unordered_map<std::string, bool> is_global_;  // names of globals, in capitals
  std::vector<std::string> globals_;
  std::vector<std::int32_t> bit_of_pin_, bit_of_block_pin_;  // the first of each pin in its group
};
