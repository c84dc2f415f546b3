// The rules of a check: one table gives each its name, what it is by default and what it means.
//
// The order of the table is the order of the findings of one sheet, and of those of the netlist.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "expand/messages.h"
#include "gx/text/at.h"

enum class kv_severity : std::uint8_t { off, warning, error };

enum class kv_rule : std::uint8_t {
  // of a sheet: those of CHEck SHEet
  class_twice,
  port_name,
  inst_twice,
  inst_on_symbol,
  body_properties,
  symbol_missing,
  symbol_old,
  pintype_twice,
  pin_twice,
  pin_loose,
  pintype_missing,
  pin_unnamed,
  pin_properties,
  pin_same_name,
  inst_missing,
  inst_class_only,
  inst_same_name,
  port_same_name,
  net_twice,
  net_properties,
  frexp_twice,
  frexp_missing,
  frame_properties,
  net_same_name,
  net_repeated,
  frame_same_name,
  too_many,
  // of a sheet and those below it
  sheet_missing,
  port_lacking,
  pin_lacking,
  globals_joined,
  // of the netlist
  no_driver,
  many_drivers,
  pin_open,
  pin_unused,
  single_pin,
  bus_widths,
  bus_range,
  run,
};

struct kv_rule_row_t {
  kv_rule rule;
  std::string_view name;
  kv_severity severity;  // by default; what CHEck SHEet counts it as
  std::string_view meaning;
};

inline constexpr std::size_t kv_rule_count = static_cast<std::size_t>(kv_rule::run) + 1;
// What each rule counts as, in the order of the table.
using kv_severities_t = std::array<kv_severity, kv_rule_count>;

std::span<const kv_rule_row_t, kv_rule_count> kv_rules();
const kv_rule_row_t& kv_row_of(kv_rule rule);
// By its whole name, letters in either case.
std::optional<kv_rule> kv_rule_named(std::string_view name);

// The rule that finds what a message of an expansion reports. Those of `bus_range` and `run` are
// found by the message alone.
kv_rule kv_rule_of(kv_message message);

kv_severities_t kv_default_severities();
inline kv_severity kv_severity_of(const kv_severities_t& severities, kv_rule rule) {
  return gx_at(severities, rule);
}
// "Error", "Warning", "Off"; "error", "warning", "off".
std::string_view kv_severity_name(kv_severity severity);
std::string_view kv_severity_word(kv_severity severity);
