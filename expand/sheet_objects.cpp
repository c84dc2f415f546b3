// Walking a sheet that may hold anything.
#include "expand/sheet_objects.h"

#include "gx/text/strings.h"

namespace {
// The first object of a type from `id` on along the siblings.
int of_type_from(const gx_file_gene_recf_t& file, int id, gx_type type) {
  const gx_object_gene_rec_t* object = nullptr;
  while ((object = kv_object(file, id)) != nullptr && object->object_type != type) {
    id = object->following;
  }
  return object != nullptr ? id : 0;
}
}  // namespace

int kv_first_child_of(const gx_file_gene_recf_t& file, int father, gx_type type) {
  const auto* object = kv_object(file, father);
  return object != nullptr ? of_type_from(file, object->child1, type) : 0;
}

int kv_last_child_of(const gx_file_gene_recf_t& file, int father, gx_type type) {
  int last = 0;
  kv_each_child(file, father, [&](int id, const gx_object_gene_rec_t& child) {
    if (child.object_type == type) last = id;
  });
  return last;
}

int kv_sheet_family(const gx_file_gene_recf_t& file, gx_type type) {
  return kv_first_child_of(file, file.primary_object, type);
}

const gx_object_property_rec_t* kv_find_prop(const gx_file_gene_recf_t& file, int holder,
                                             std::string_view name) {
  const auto* object = kv_object(file, holder);
  if (object == nullptr) return nullptr;
  for (int id = object->child1; (object = kv_object(file, id)) != nullptr; id = object->following) {
    if (object->object_type != gx_type::property_2d || (object->status & gx_flag_deleted) != 0) {
      continue;
    }
    const auto* property = reinterpret_cast<const gx_object_property_rec_t*>(object);
    const std::string_view own = gx_view(property->name);
    if (own.size() == name.size() && gx_iden(own, name)) return property;
  }
  return nullptr;
}

const gx_object_property_rec_t* kv_find_prop_of_two(const gx_file_gene_recf_t& file, int first,
                                                    int second, std::string_view name) {
  const auto* property = kv_find_prop(file, first, name);
  return property != nullptr ? property : kv_find_prop(file, second, name);
}

const gx_object_property_rec_t* kv_find_inst_prop(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name) {
  const auto* record = kv_object_as<gx_object_instance_rec_t>(file, inst);
  if (record == nullptr) return nullptr;
  const auto* own = kv_find_prop(file, kv_first_child_of(file, inst, gx_type::bodpropfam), name);
  if (own != nullptr || kv_object_as<gx_object_symbol_rec_t>(file, record->symbol) == nullptr) {
    return own;
  }
  const int body = kv_last_child_of(file, record->symbol, gx_type::body);
  return kv_find_prop(file, kv_first_child_of(file, body, gx_type::property_family), name);
}

const gx_object_property_rec_t* kv_find_net_prop(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name) {
  return kv_find_prop_of_two(file, kv_first_child_of(file, net, gx_type::property_family), net,
                             name);
}

kv_pin_ids_t kv_first_pin(const gx_file_gene_recf_t& file, int inst) {
  kv_pin_ids_t pair;
  const auto* record = kv_object_as<gx_object_instance_rec_t>(file, inst);
  if (record == nullptr) return pair;
  const int family = kv_first_child_of(file, inst, gx_type::pin_family);
  pair.pinpropfam = kv_first_child_of(file, family, gx_type::pinpropfam);
  if (kv_object_as<gx_object_symbol_rec_t>(file, record->symbol) != nullptr) {
    const int symbol_family = kv_last_child_of(file, record->symbol, gx_type::pin_family);
    pair.pin = kv_first_child_of(file, symbol_family, gx_type::pin);
  }
  return pair;
}

kv_pin_ids_t kv_next_pin(const gx_file_gene_recf_t& file, kv_pin_ids_t pair) {
  const auto* pin = kv_object(file, pair.pin);
  const auto* family = kv_object(file, pair.pinpropfam);
  if (pin == nullptr || family == nullptr) return {};
  const kv_pin_ids_t next{of_type_from(file, pin->following, gx_type::pin),
                          of_type_from(file, family->following, gx_type::pinpropfam)};
  return next.pin != 0 && next.pinpropfam != 0 ? next : kv_pin_ids_t{};
}
