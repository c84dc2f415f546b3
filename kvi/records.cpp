// Fills the records that a client sees, and finds their properties.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

#include "gx/text/at.h"
#include "kvi/state.h"

namespace {

// The record behind `record`, allocated (all zero) on first use; null without memory.
template <typename Record>
Record* allocated(Record** record) {
  if (!*record) *record = static_cast<Record*>(std::calloc(1, sizeof(Record)));
  return *record;
}

void fill_property(const kv_prop_record_t& from, std::string_view name, kvi_prop_record_t& to) {
  kvi_set_string(to.name, name);
  to.vtype = from.prop_type;
  switch (from.prop_type) {
    case kv_prop_string:
      to.value.svalue.charp = to.text;
      kvi_set_string(to.value.svalue, kvi_text(from.valuec));
      to.text = to.value.svalue.charp;
      break;
    case kv_prop_int:
      std::copy_n(from.valuei, 3, to.value.ivalue);
      break;
    case kv_prop_time:
      std::copy_n(from.valuet, 3, to.value.tvalue);
      break;
    case kv_prop_real:
      std::copy_n(from.valuer, 3, to.value.rvalue);
      break;
  }
}

// What all three kinds of records have: properties, path and name. The name is `stored`, or the
// value of the string property `name_property`, or `fallback`.
template <typename Record, typename Stored>
void fill_common(Record& to, const Stored& from, std::int32_t index, const kv_prop_list_t& list,
                 std::string_view stored, std::string_view name_property,
                 std::string_view fallback) {
  to.self_id = index;
  kvi_set_string(to.sim_path, kvi_text(from.sim_path));
  to.nb_of_property = 0;
  std::string name(stored);
  const std::int32_t nb_of_property = std::min<std::int32_t>(from.nb_of_property, list.count);
  for (std::int32_t k = 0; k < nb_of_property; ++k) {
    const std::int32_t prop_ind = from.first_prop + k;
    if (!kvi_state.design.holds<kv_prop_record_t>(prop_ind) || !allocated(&to.prop[k])) break;
    const auto prop = kvi_state.design.get<kv_prop_record_t>(prop_ind);
    const std::string_view prop_name = gx_view(gx_at(list.entry, k).name);
    fill_property(prop, prop_name, *to.prop[k]);
    ++to.nb_of_property;
    const bool names_it = prop.prop_type == kv_prop_string &&
                          prop_name.size() == name_property.size() &&
                          std::equal(prop_name.begin(), prop_name.end(), name_property.begin(),
                                     [](char a, char b) { return kvi_upper_case(a) == b; });
    if (name.empty() && names_it) name = kvi_text(prop.valuec);
  }
  if (name.empty()) name = fallback;
  kvi_set_string(to.name, name);
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
  const auto& design = kvi_loaded();
  if (!design.holds<kv_net_record_t>(net)) return;
  if (!allocated(record)) return;
  const auto from = design.get<kv_net_record_t>(net);
  kvi_net_record_t& to = **record;
  const bool is_bus = from.net_type == kv_net_bus;
  to.net_type = from.net_type;
  to.net_kind = from.net_kind;
  to.net_bus_start = is_bus ? from.net_bus_start : std::int16_t{0};
  to.net_bus_end = is_bus ? from.net_bus_end : std::int16_t{0};
  to.netind_start = is_bus ? from.netind_start : 0;
  to.first_sub_net = is_bus ? from.first_sub_net : 0;
  to.bus = is_bus ? 0 : from.bus;
  to.father_net = is_bus ? 0 : from.father_net;
  to.next_sub_net = is_bus ? 0 : from.next_sub_net;
  const bool is_member = !is_bus && from.bus != 0;
  fill_common(to, from, net, design.property_net(), kvi_text(from.name), "NET",
              is_member ? "_" + std::to_string(from.posinbus) : "N_" + std::to_string(net));
}

void kvi_get_instance_record(std::int32_t instance, kvi_instance_record_t** record) {
  const auto& design = kvi_loaded();
  if (!design.holds<kv_inst_record_t>(instance)) return;
  if (!allocated(record)) return;
  const auto from = design.get<kv_inst_record_t>(instance);
  kvi_instance_record_t& to = **record;
  kvi_set_string(to.file_path, kvi_text(from.file_path));
  to.primitive = 1;
  to.owning_instance = 0;
  to.timing_index = from.timing_index;
  fill_common(to, from, instance, design.property_instance(), {}, "INST",
              "I_" + std::to_string(instance));
}

void kvi_get_pin_record(std::int32_t pin, kvi_pin_record_t** record) {
  const auto& design = kvi_loaded();
  if (!design.holds<kv_pin_record_t>(pin)) return;
  if (!allocated(record)) return;
  const auto from = design.get<kv_pin_record_t>(pin);
  kvi_pin_record_t& to = **record;
  to.pin_type = from.io_type;
  to.instance = from.instance_ind;
  to.net = from.net_ind;
  to.pin_start = from.pin_start;
  to.pin_end = from.pin_end;
  to.pin_net_start = from.pin_net_start;
  to.location = {0, 0};
  fill_common(to, from, pin, design.property_pin(), {}, "PIN", "N_" + std::to_string(pin));
}

void kvi_get_macro_record(std::int32_t macro, kvi_macro_record_t** record) {
  const auto& design = kvi_loaded();
  if (!design.holds<kv_macro_record_t>(macro)) return;
  if (!allocated(record)) return;
  const auto from = design.get<kv_macro_record_t>(macro);
  kvi_macro_record_t& to = **record;
  kvi_set_string(to.file_path, kvi_text(from.file_path));
  to.timing_index = from.timing_index;
  fill_common(to, from, macro, design.property_instance(), {}, "INST",
              "I_" + std::to_string(macro));
}

void kvi_get_macro_pin_record(std::int32_t pin, kvi_macro_pin_record_t** record) {
  const auto& design = kvi_loaded();
  if (!design.holds<kv_pinm_record_t>(pin)) return;
  if (!allocated(record)) return;
  const auto from = design.get<kv_pinm_record_t>(pin);
  kvi_macro_pin_record_t& to = **record;
  to.macro = from.macro_ind;
  to.net = from.net_ind;
  to.pin_start = from.pin_start;
  to.pin_end = from.pin_end;
  to.pin_net_start = from.pin_net_start;
  fill_common(to, from, pin, design.property_pin(), {}, "PIN", "N_" + std::to_string(pin));
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
