// Fills the records that a client sees, and finds their properties.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kvi/state.h"

namespace {

// The record that `record` points to, allocated (all zero) on first use; null without memory.
template <typename Record>
Record* allocated(Record** record) {
  if (!*record) *record = static_cast<Record*>(std::calloc(1, sizeof(Record)));
  return *record;
}

void fill_property(const kv_property_t& from, kvi_prop_record_t& to) {
  kvi_set_string(to.name, from.name);
  to.vtype = from.type;
  switch (from.type) {
    case kv_prop_string:
      to.value.svalue.charp = to.text;
      kvi_set_string(to.value.svalue, from.text);
      to.text = to.value.svalue.charp;
      break;
    case kv_prop_int:
      std::copy_n(from.whole, 3, to.value.ivalue);
      break;
    case kv_prop_time:
      std::copy_n(from.whole, 3, to.value.tvalue);
      break;
    case kv_prop_real:
      std::copy_n(from.real, 3, to.value.rvalue);
      break;
  }
}

// What all kinds of records have: properties, path and name. The name is `stored`, or the value of
// the string property `name_property`, or `fallback`.
template <typename Record>
void fill_common(Record& to, const kvi_netlist_t& netlist, kv_object_t from,
                 std::string_view stored, std::string_view name_property,
                 std::string_view fallback) {
  to.self_id = from.index;
  kvi_set_string(to.sim_path, netlist.path(from));
  to.nb_of_property = 0;
  std::string_view name = stored;
  const std::int32_t nb_of_properties = netlist.nb_of_properties(from);
  for (std::int32_t k = 0; k < nb_of_properties; ++k) {
    if (!allocated(&to.prop[k])) break;
    const kv_property_t property = netlist.property(from, k);
    fill_property(property, *to.prop[k]);
    ++to.nb_of_property;
    const bool names_it = property.type == kv_prop_string &&
                          std::ranges::equal(property.name, name_property, {}, kvi_upper_case);
    if (name.empty() && names_it) name = property.text;
  }
  kvi_set_string(to.name, name.empty() ? fallback : name);
}

// What instances and macros have.
template <typename Record>
void fill_owner(Record& to, const kvi_netlist_t& netlist, kv_object_t from) {
  kvi_set_string(to.file_path, netlist.file_path(from));
  to.timing_index = netlist.timing_index(from);
  fill_common(to, netlist, from, {}, "INST", "I_" + std::to_string(from.index));
}

// What pins of both have.
template <typename Record>
void fill_pin(Record& to, const kvi_netlist_t& netlist, kv_object_t from) {
  to.net = netlist.net(from);
  to.pin_start = netlist.first_bit(from);
  to.pin_end = netlist.last_bit(from);
  to.pin_net_start = netlist.net_first_bit(from);
  fill_common(to, netlist, from, {}, "PIN", "N_" + std::to_string(from.index));
}

template <typename Record>
std::int32_t find_property(const Record* record, std::int32_t len, const char* name,
                           kvi_prop_record_t** property) {
  if (property) *property = nullptr;
  if (!record || !name || len < 1 || len > 200) return 0;
  for (int k = 0; k < record->nb_of_property; ++k) {
    kvi_prop_record_t* prop = record->prop[k];
    if (!kvi_equal_string(prop->name.len, prop->name.charp, len, name)) continue;
    if (property) *property = prop;
    return 1;
  }
  return 0;
}

template <typename Record>
void free_common(Record** record) {
  std::free((*record)->name.charp);
  std::free((*record)->sim_path.charp);
  for (kvi_prop_record_t* prop : (*record)->prop) {
    if (!prop) continue;
    std::free(prop->name.charp);
    std::free(prop->text);
    std::free(prop);
  }
  std::free(*record);
  *record = nullptr;
}

}  // namespace

void kvi_get_net_record(std::int32_t net, kvi_net_record_t** record) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  if (!netlist.holds({kv_named::net, net}) || !allocated(record)) return;
  kvi_net_record_t& to = **record;
  const bool is_bus = netlist.is_bus(net);
  to.net_type = netlist.net_type(net);
  to.net_kind = netlist.net_kind(net);
  to.net_bus_start = netlist.bus_start(net);
  to.net_bus_end = netlist.bus_end(net);
  to.netind_start = netlist.first_member(net);
  to.first_sub_net = is_bus ? netlist.first_named(net) : 0;
  to.bus = is_bus ? 0 : netlist.bus(net);
  to.father_net = is_bus ? 0 : netlist.father(net);
  to.next_sub_net = is_bus ? 0 : netlist.next_named(net);
  fill_common(
      to, netlist, {kv_named::net, net}, netlist.name(net), "NET",
      to.bus != 0 ? "_" + std::to_string(netlist.position(net)) : "N_" + std::to_string(net));
}

void kvi_get_instance_record(std::int32_t instance, kvi_instance_record_t** record) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const kv_object_t from{kv_named::inst, instance};
  if (!netlist.holds(from) || !allocated(record)) return;
  (*record)->primitive = 1;
  (*record)->owning_instance = 0;
  fill_owner(**record, netlist, from);
}

void kvi_get_pin_record(std::int32_t pin, kvi_pin_record_t** record) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const kv_object_t from{kv_named::pin, pin};
  if (!netlist.holds(from) || !allocated(record)) return;
  (*record)->pin_type = netlist.io_type(from);
  (*record)->instance = netlist.owner(from).index;
  (*record)->location = {0, 0};
  fill_pin(**record, netlist, from);
}

void kvi_get_macro_record(std::int32_t macro, kvi_macro_record_t** record) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const kv_object_t from{kv_named::macro, macro};
  if (!netlist.holds(from) || !allocated(record)) return;
  fill_owner(**record, netlist, from);
}

void kvi_get_macro_pin_record(std::int32_t pin, kvi_macro_pin_record_t** record) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const kv_object_t from{kv_named::pinm, pin};
  if (!netlist.holds(from) || !allocated(record)) return;
  (*record)->macro = netlist.owner(from).index;
  fill_pin(**record, netlist, from);
}

void kvi_free_net_record(kvi_net_record_t** record) {
  if (record && *record) free_common(record);
}
void kvi_free_instance_record(kvi_instance_record_t** record) {
  if (!record || !*record) return;
  std::free((*record)->file_path.charp);
  free_common(record);
}
void kvi_free_pin_record(kvi_pin_record_t** record) {
  if (record && *record) free_common(record);
}
void kvi_free_macro_record(kvi_macro_record_t** record) {
  if (!record || !*record) return;
  std::free((*record)->file_path.charp);
  free_common(record);
}
void kvi_free_macro_pin_record(kvi_macro_pin_record_t** record) {
  if (record && *record) free_common(record);
}

std::int32_t kvi_find_net_property(const kvi_net_record_t* record, std::int32_t len,
                                   const char* name, kvi_prop_record_t** property) {
  return find_property(record, len, name, property);
}
std::int32_t kvi_find_instance_property(const kvi_instance_record_t* record, std::int32_t len,
                                        const char* name, kvi_prop_record_t** property) {
  return find_property(record, len, name, property);
}
std::int32_t kvi_find_pin_property(const kvi_pin_record_t* record, std::int32_t len,
                                   const char* name, kvi_prop_record_t** property) {
  return find_property(record, len, name, property);
}
