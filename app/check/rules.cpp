#include "app/check/rules.h"

#include <algorithm>
#include <iterator>

#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {

using enum kv_severity;

constexpr std::array<kv_rule_row_t, kv_rule_count> rule_rows = {{
    // clang-format off
    {kv_rule::class_twice, "class-twice", error, "more than one CLASS on an instance"},
    {kv_rule::port_name, "port-name", error, "a port of CLASS P without NET on its first pin"},
    {kv_rule::inst_twice, "inst-twice", error, "more than one INST on an instance"},
    {kv_rule::inst_on_symbol, "inst-on-symbol", warning, "INST on the symbol, not on the instance"},
    {kv_rule::body_properties, "body-properties", error, "properties of one name on an instance"},
    {kv_rule::symbol_missing, "symbol-missing", error, "the file of a symbol does not exist"},
    {kv_rule::symbol_old, "symbol-old", error, "a symbol is not its current version"},
    {kv_rule::pintype_twice, "pintype-twice", error, "more than one PINTYPE on a pin"},
    {kv_rule::pin_twice, "pin-twice", error, "more than one PIN on a pin"},
    {kv_rule::pin_loose, "pin-loose", error, "the PIN of a pin is not fixed"},
    {kv_rule::pintype_missing, "pintype-missing", warning, "a pin without PINTYPE"},
    {kv_rule::pin_unnamed, "pin-unnamed", error, "a pin without PIN"},
    {kv_rule::pin_properties, "pin-properties", error, "properties of one name on a pin"},
    {kv_rule::pin_same_name, "pin-same-name", error, "pins of one name on an instance"},
    {kv_rule::inst_missing, "inst-missing", error, "an instance with neither INST nor CLASS"},
    {kv_rule::inst_class_only, "inst-class-only", warning, "an instance with CLASS and no INST"},
    {kv_rule::inst_same_name, "inst-same-name", error, "instances of one name on a sheet"},
    {kv_rule::port_same_name, "port-same-name", error, "ports of CLASS P of one name on a sheet"},
    {kv_rule::net_twice, "net-twice", error, "more than one NET on a net"},
    {kv_rule::net_properties, "net-properties", error, "properties of one name on a net"},
    {kv_rule::frexp_twice, "frexp-twice", error, "more than one FREXP on a frame"},
    {kv_rule::frexp_missing, "frexp-missing", warning, "a frame without FREXP"},
    {kv_rule::frame_properties, "frame-properties", error, "properties of one name on a frame"},
    {kv_rule::net_same_name, "net-same-name", warning, "nets joined by a name that one of them hides"},
    {kv_rule::net_repeated, "net-repeated", off, "nets joined by a supply, a port or a label"},
    {kv_rule::frame_same_name, "frame-same-name", error, "frames of one FREXP on a sheet"},
    {kv_rule::too_many, "too-many", error, "CHEck SHEet: more than 999 names of a kind"},

    {kv_rule::sheet_missing, "sheet-missing", error, "a block without a sheet that can be read"},
    {kv_rule::port_lacking, "port-lacking", error, "a pin of a block: its sheet lacks the port"},
    {kv_rule::pin_lacking, "pin-lacking", error, "a port of a sheet: its block lacks the pin"},
    {kv_rule::globals_joined, "globals-joined", error, "two globals on one net"},

    {kv_rule::no_driver, "no-driver", error, "a net of inputs that nothing drives"},
    {kv_rule::many_drivers, "many-drivers", error, "a net that several OUT pins drive"},
    {kv_rule::pin_open, "pin-open", error, "an IN pin on no net"},
    {kv_rule::pin_unused, "pin-unused", warning, "a pin of another type on no net"},
    {kv_rule::single_pin, "single-pin", warning, "a net of a single pin"},
    {kv_rule::bus_widths, "bus-widths", warning, "pins of one bus of different widths"},
    {kv_rule::bus_range, "bus-range", error, "a pin that does not fit its bus or its port"},
    {kv_rule::run, "run", error, "another error that RUN reports"},
    // clang-format on
}};

// The rules of the messages of an expansion; all others are of the rule `run`.
struct kv_reported_t {
  kv_message message;
  kv_rule rule;
};
constexpr kv_reported_t reported[] = {
    {kv_message::symbol_version_invalid, kv_rule::symbol_missing},
    {kv_message::symbol_missing, kv_rule::symbol_missing},
    {kv_message::symbol_not_current, kv_rule::symbol_old},
    {kv_message::block_symbol_missing, kv_rule::symbol_missing},
    {kv_message::block_version_invalid, kv_rule::symbol_missing},
    {kv_message::sheet_missing, kv_rule::sheet_missing},
    {kv_message::sheet_damaged, kv_rule::sheet_missing},
    {kv_message::sheet_not_whole, kv_rule::sheet_missing},
    {kv_message::sheet_unchecked, kv_rule::sheet_missing},
    {kv_message::sheet_with_errors, kv_rule::sheet_missing},
    {kv_message::port_without_pin, kv_rule::pin_lacking},
    {kv_message::globals_joined, kv_rule::globals_joined},
    {kv_message::globals_meet, kv_rule::globals_joined},
    {kv_message::globals_meet_below, kv_rule::globals_joined},
    {kv_message::pin_without_net, kv_rule::pin_open},
    {kv_message::pin_beyond_bus, kv_rule::bus_range},
    {kv_message::port_misfit, kv_rule::bus_range},
};

constexpr bool are_in_order() {
  for (std::size_t i = 0; i < rule_rows.size(); ++i) {
    if (rule_rows[i].rule != static_cast<kv_rule>(i)) return false;
  }
  return true;
}
static_assert(are_in_order());

}  // namespace

std::span<const kv_rule_row_t, kv_rule_count> kv_rules() { return rule_rows; }

const kv_rule_row_t& kv_row_of(kv_rule rule) { return gx_at(rule_rows, rule); }

std::optional<kv_rule> kv_rule_named(std::string_view name) {
  const auto row =
      std::ranges::find_if(rule_rows, [&](const auto& r) { return gx_iden(r.name, name); });
  if (row == rule_rows.end()) return std::nullopt;
  return row->rule;
}

kv_rule kv_rule_of(kv_message message) {
  const auto row = std::ranges::find(reported, message, &kv_reported_t::message);
  return row == std::end(reported) ? kv_rule::run : row->rule;
}

kv_severities_t kv_default_severities() {
  kv_severities_t severities;
  std::ranges::transform(rule_rows, severities.begin(), &kv_rule_row_t::severity);
  return severities;
}

std::string_view kv_severity_name(kv_severity severity) {
  constexpr std::string_view names[] = {"Off", "Warning", "Error"};
  return gx_at(names, severity);
}

std::string_view kv_severity_word(kv_severity severity) {
  constexpr std::string_view words[] = {"off", "warning", "error"};
  return gx_at(words, severity);
}
