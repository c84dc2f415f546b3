// What the rules find on the expanded netlist.
#pragma once

#include <string>
#include <string_view>

#include "app/check/electrical.h"
#include "app/check/findings/finding.h"
#include "expand/origins.h"

// --- for the rules of the netlist and what its run reported: findings at places of the design
struct kv_netlist_findings_t {
  const kv_design_t& design;
  const kv_origins_t& origins;
  const kv_severities_t& severities;
  const kv_electrical_marks& marks;
  kv_findings_t& findings;

  void add(kv_rule rule, std::string_view path, kv_place_t place, std::string words) const;
};

// Of a run that was done; in the order of the rules, of each rule in the order of the nets or pins.
void kv_find_on_netlist(const kv_netlist_findings_t& found);
