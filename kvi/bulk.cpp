// Many pins in one call, for callers to whom a call for each costs more than the reading.
#include <algorithm>
#include <string>
#include <string_view>

#include "gx/text/at.h"
#include "kvi/state.h"

namespace {

// All characters, as the texts of the design lie among them.
std::string_view characters(const kvi_design_t& design) {
  const std::int32_t count = design.count<char>();
  if (count == 0) return {};
  return {reinterpret_cast<const char*>(design.bytes_of<char>(1)), static_cast<std::size_t>(count)};
}

kvi_span_t span_of(std::string_view text, std::string_view all) {
  if (text.empty()) return {0, 0};
  return {static_cast<std::int32_t>(text.data() - all.data()),
          static_cast<std::int32_t>(text.size())};
}

// Calls fill(pin, row) for each of `count` rows that there is a pin for; how many there are.
template <typename Row, typename Fill>
std::int32_t each_pin(std::int32_t first, std::int32_t count, Row* rows, Fill fill) {
  const std::int32_t last = kvi_get_nb_of_pins();
  if (!rows || first < 1 || count < 1 || first > last) return 0;
  const std::int32_t there = std::min(count, last - first + 1);
  for (std::int32_t i = 0; i < there; ++i) fill(kv_object_t{kv_named::pin, first + i}, rows[i]);
  return there;
}

}  // namespace

const char* kvi_get_characters(std::int32_t* len) {
  const std::string_view all = characters(kvi_loaded());
  if (len) *len = static_cast<std::int32_t>(all.size());
  return all.empty() ? "" : all.data();
}

std::int32_t kvi_get_nb_of_pins() { return kvi_loaded_netlist().count(kv_named::pin); }

std::int32_t kvi_get_pins(std::int32_t first, std::int32_t count, kvi_pin_row_t* rows) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const std::string_view all = characters(kvi_loaded());
  return each_pin(first, count, rows, [&](kv_object_t pin, kvi_pin_row_t& row) {
    row = {netlist.owner(pin).index,       netlist.net(pin),      netlist.io_type(pin),
           netlist.first_bit(pin),         netlist.last_bit(pin), netlist.net_first_bit(pin),
           span_of(netlist.path(pin), all)};
  });
}

const char* kvi_get_pin_property_name(std::int32_t place) {
  static std::string name;
  const auto& list = kvi_loaded().kept().property_pin;
  if (place < 0 || place >= list.count) return nullptr;
  name = gx_view(gx_at(list.entry, place).name);
  return name.c_str();
}

std::int32_t kvi_get_pin_values(std::int32_t place, std::int32_t first, std::int32_t count,
                                kvi_value_row_t* rows) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const std::string_view all = characters(kvi_loaded());
  if (place < 0 || place >= kvi_loaded().kept().property_pin.count) return 0;
  return each_pin(first, count, rows, [&](kv_object_t pin, kvi_value_row_t& row) {
    row = {};
    if (place >= netlist.nb_of_properties(pin)) return;
    const kv_property_t property = netlist.property(pin, place);
    row.vtype = property.type;
    row.text = span_of(property.text, all);
    std::ranges::copy(property.whole, row.whole);
    std::ranges::copy(property.real, row.real);
  });
}

std::int32_t kvi_get_size_of(const char* name) {
  constexpr struct {
    std::string_view name;
    std::size_t size;
  } sizes[] = {{"net", sizeof(kvi_net_record_t)},
               {"instance", sizeof(kvi_instance_record_t)},
               {"pin", sizeof(kvi_pin_record_t)},
               {"macro", sizeof(kvi_macro_record_t)},
               {"macro_pin", sizeof(kvi_macro_pin_record_t)},
               {"property", sizeof(kvi_prop_record_t)},
               {"place", sizeof(kvi_place_t)},
               {"pin_row", sizeof(kvi_pin_row_t)},
               {"value_row", sizeof(kvi_value_row_t)}};
  for (const auto& entry : sizes)
    if (name && entry.name == name) return static_cast<std::int32_t>(entry.size);
  return 0;
}
