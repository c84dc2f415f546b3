// Walking a sheet that may hold anything: every look at an object checks its id and its type, and
// what is missing or of the wrong type is simply not there. The queries of gx/db serve commands
// that may rely on a sheet's shape; a run must get through every file that could be read.
#pragma once

#include <string_view>

#include "gx/db/file_records.h"

// The object, or nullptr when the id names none.
inline const gx_object_gene_rec_t* kv_object(const gx_file_gene_recf_t& file, int id) {
  return id >= 1 && id <= file.object_id_max
             ? file.ptr_to_ar_objindex[static_cast<std::size_t>(id - 1)]
             : nullptr;
}

// The object as a record of its type, or nullptr when it is none.
template <typename Rec>
const Rec* kv_object_as(const gx_file_gene_recf_t& file, int id) {
  const auto* object = kv_object(file, id);
  return object != nullptr && object->object_type == Rec::type
             ? reinterpret_cast<const Rec*>(object)
             : nullptr;
}

// Calls `visit(id, object)` for each child of `father` in child order.
template <typename Visit>
void kv_each_child(const gx_file_gene_recf_t& file, int father, Visit visit) {
  const auto* object = kv_object(file, father);
  if (object == nullptr) return;
  for (int id = object->child1; (object = kv_object(file, id)) != nullptr; id = object->following) {
    visit(id, *object);
  }
}

// Child of that type, 0 when there is none: the first, and the last that a symbol is known by.
int kv_first_child_of(const gx_file_gene_recf_t& file, int father, gx_type type);
int kv_last_child_of(const gx_file_gene_recf_t& file, int father, gx_type type);

// Family of the sheet that holds the members of a type (gx_type::net_family and so on).
int kv_sheet_family(const gx_file_gene_recf_t& file, gx_type type);

// The first property of that name directly under a holder; nullptr when there is none.
const gx_object_property_rec_t* kv_find_prop(const gx_file_gene_recf_t& file, int holder,
                                             std::string_view name);
// Of an instance: its own, else its symbol's.
const gx_object_property_rec_t* kv_find_inst_prop(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name);
// Of a net: in its property family, else directly under it.
const gx_object_property_rec_t* kv_find_net_prop(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name);
// Under the first of two holders that has it.
const gx_object_property_rec_t* kv_find_prop_of_two(const gx_file_gene_recf_t& file, int first,
                                                    int second, std::string_view name);

// The value of a property; empty for nullptr.
inline std::string_view kv_prop_text(const gx_object_property_rec_t* property) {
  return property != nullptr ? gx_view(property->nvalue) : std::string_view{};
}

// The first pin of an instance: its pin property family and the symbol's pin at the same place.
// Either may be 0.
struct kv_pin_ids_t {
  int pin = 0, pinpropfam = 0;
};
kv_pin_ids_t kv_first_pin(const gx_file_gene_recf_t& file, int inst);
// The pair behind it; both 0 when either chain ends.
kv_pin_ids_t kv_next_pin(const gx_file_gene_recf_t& file, kv_pin_ids_t pair);
