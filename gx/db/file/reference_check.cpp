// Whether the objects of a file that was just read refer to each other soundly. Everything that
// walks a file later relies on it: ids are in range and name the types that the walks expect, and
// every chain ends. All checks together take time proportional to the number of objects.
#include "gx/db/file/reference_check.h"

#include <array>
#include <string>
#include <vector>

#include "gx/db/file/record_tables.h"
#include "gx/text/at.h"

namespace {

// The editors' bracket of open objects is no deeper, so no written tree is.
constexpr int max_depth = 32;

const gx_object_gene_rec_t& object_of(const gx_file_gene_recf_t& file, int id) {
  return *gx_at(file.ptr_to_ar_objindex, id - 1);
}

std::string object_text(int id) { return "object " + std::to_string(id); }

std::string field_text(int id, std::string_view field, int value) {
  return object_text(id) + ": " + std::string(field) + " " + std::to_string(value);
}

// What the objects of a type may hold; the types that are not named here hold what they like.
struct holds_t {
  gx_type holder, child;
};
constexpr holds_t held_types[] = {
    {gx_type::component_family, gx_type::component},
    {gx_type::instance_family, gx_type::instance},
    {gx_type::symbol_family, gx_type::symbol},
    {gx_type::net_family, gx_type::net},
    {gx_type::vertex_family, gx_type::vertex_2d},
    {gx_type::frame_family, gx_type::frame},
    {gx_type::bodpropfam, gx_type::property_2d},
    {gx_type::pinpropfam, gx_type::property_2d},
    {gx_type::pin, gx_type::property_2d},
    {gx_type::property_family, gx_type::property_2d},
};

// By holder's type; nil where anything goes.
constexpr auto child_of = [] {
  std::array<gx_type, gx_max_type + 1> table{};
  for (const auto& [holder, child] : held_types) gx_at(table, holder) = child;
  return table;
}();

gx_type type_of(const gx_file_gene_recf_t& file, int id) {
  return id == 0 ? gx_type::nil : object_of(file, id).object_type;
}

// A family of pins holds an instance's ends or a symbol's pins, by its own father.
bool hangs_well(const gx_file_gene_recf_t& file, const gx_object_gene_rec_t& object) {
  if (object.father == 0) return true;
  const auto& father = object_of(file, object.father);
  if (father.object_type == gx_type::pin_family) {
    const bool of_instance = type_of(file, father.father) == gx_type::instance;
    return object.object_type == (of_instance ? gx_type::pinpropfam : gx_type::pin);
  }
  const gx_type wanted = gx_at(child_of, father.object_type);
  return wanted == gx_type::nil || object.object_type == wanted;
}

// Whether an existing object is one that such a field may name.
template <gx_refers Refers>
bool refers_well(const gx_file_gene_recf_t& file, int id) {
  using enum gx_refers;
  if (Refers == any || id == 0) return true;
  const auto& object = object_of(file, id);
  switch (Refers) {
    case instance:
      return object.object_type == gx_type::instance;
    case symbol:
      return object.object_type == gx_type::symbol;
    case net:
      return object.object_type == gx_type::net;
    case net_end:
      return object.object_type == gx_type::vertex_2d ||
             (object.object_type == gx_type::pinpropfam &&
              type_of(file, object.father) == gx_type::pin_family);
    case page:
      return object.object_type == gx_type::page;
    case grid:
      return object.object_type == gx_type::grid_2d;
    case any:
      break;
  }
  return true;
}

// What is wrong with the first bad number among the fields of one record: the field's index in the
// table and the words for it.
struct bad_field_t {
  std::size_t index = 0;
  std::string_view what;  // empty: all are sound
};

template <const auto& Fields>
bad_field_t bad_field(const gx_file_gene_recf_t& file, const void* record) {
  constexpr gx_fields_t fields = Fields;
  bad_field_t bad;
  gx_unroll_fields<Fields>([&](auto index) {
    constexpr const gx_field_t& field = fields[index];
    if constexpr (field.kind == gx_kind::id) {
      const int value = gx_number<gx_object_id_t>(record, field);
      if (!bad.what.empty()) return;
      if (value < 0 || value > file.object_id_max || (field.never_0 && value == 0)) {
        bad = {index, " does not exist"};
      } else if (!refers_well<field.refers>(file, value)) {
        bad = {index, " has the wrong type"};
      }
    } else if constexpr (field.limit > 0 || field.never_0) {
      const auto value = gx_field_number(record, field);
      const bool outside = field.limit > 0 && (value < 0 || value > field.limit);
      if (bad.what.empty() && (outside || (field.never_0 && value == 0)))
        bad = {index, " is out of range"};
    }
  });
  return bad;
}

template <std::size_t Type>
struct bad_tail_of {
  static bad_field_t call(const gx_file_gene_recf_t& file, const void* record) {
    return bad_field<gx_tables::tail_of<Type>>(file, record);
  }
};
constexpr auto& bad_tail =
    gx_by_type<bad_field_t (*)(const gx_file_gene_recf_t&, const void*), bad_tail_of>;

// Where, the field with its value, what is wrong; "" when nothing is.
std::string field_fault(const bad_field_t& bad, const std::string& where, const void* record,
                        gx_fields_t fields) {
  if (bad.what.empty()) return {};
  const auto& field = fields[bad.index];
  return where + ": " + std::string(field.name) + " " +
         std::to_string(gx_field_number(record, field)) + std::string(bad.what);
}

// Parent and children agree in their links and types, and no object lies deeper than max_depth (so
// no fathers loop).
std::string tree_fault(const gx_file_gene_recf_t& file, const gx_object_gene_rec_t& object) {
  const int id = object.object_id;
  if (object.child1 != 0 && object_of(file, object.child1).father != id) {
    return field_text(id, "child1", object.child1) + " has another father";
  }
  if (object.following != 0 && object_of(file, object.following).father != object.father) {
    return field_text(id, "following", object.following) + " has another father";
  }
  if (!hangs_well(file, object)) {
    return object_text(id) + ": no child of its type belongs under object " +
           std::to_string(object.father);
  }
  int depth = 1;
  for (int at = object.father; at != 0; at = object_of(file, at).father) {
    if (++depth > max_depth) return object_text(id) + ": its fathers loop or lie too deep";
  }
  return {};
}

// The ids that one link field chains: every chain must begin somewhere and end, and no two of them
// may join. `next[id]` is the object after `id`.
std::string chain_fault(const std::vector<gx_object_id_t>& next, std::string_view field) {
  const int last = static_cast<int>(next.size()) - 1;
  std::vector<char> has_one_before(next.size(), 0);
  for (int id = 1; id <= last; ++id) {
    const int to = gx_at(next, id);
    if (to == 0) continue;
    auto& before = gx_at(has_one_before, to);
    if (before != 0) return field_text(id, field, to) + " stands in another chain too";
    before = 1;
  }
  // Objects that no walk from a beginning meets lie on a loop.
  int met = 0;
  for (int id = 1; id <= last; ++id) {
    if (gx_at(has_one_before, id) != 0) continue;
    for (int at = id; at != 0; at = gx_at(next, at)) ++met;
  }
  return met == last ? std::string{} : "a chain of objects by " + std::string(field) + " loops";
}

template <typename NextOf>
std::string chain_fault_of(const gx_file_gene_recf_t& file, std::string_view field,
                           NextOf next_of) {
  std::vector<gx_object_id_t> next(file.ptr_to_ar_objindex.size() + 1, 0);
  for (std::size_t i = 0; i < file.ptr_to_ar_objindex.size(); ++i) {
    next[i + 1] = next_of(*file.ptr_to_ar_objindex[i]);
  }
  return chain_fault(next, field);
}

const gx_object_instance_rec_t* as_instance(const gx_object_gene_rec_t& object) {
  return object.object_type == gx_type::instance
             ? reinterpret_cast<const gx_object_instance_rec_t*>(&object)
             : nullptr;
}

std::string reference_fault(const gx_file_gene_recf_t& file, int id) {
  const auto& object = object_of(file, id);
  if (object.object_id != id) {
    return object_text(id) + ": its stored id is " + std::to_string(object.object_id);
  }
  if (const auto bad = bad_field<gx_tables::general_fields>(file, &object); !bad.what.empty()) {
    return field_fault(bad, object_text(id), &object, gx_general_fields());
  }
  const auto bad = gx_at(bad_tail, object.object_type)(file, &object);
  if (bad.what.empty()) return {};
  return field_fault(bad, object_text(id), &object, gx_tail_fields(object.object_type));
}

}  // namespace

std::string gx_reference_fault(const gx_file_gene_recf_t& file) {
  if (const auto bad = bad_field<gx_tables::header_fields>(file, &file); !bad.what.empty()) {
    return field_fault(bad, "header", &file, gx_header_fields());
  }
  for (int id = 1; id <= file.object_id_max; ++id) {
    if (auto fault = reference_fault(file, id); !fault.empty()) return fault;
  }
  for (int id = 1; id <= file.object_id_max; ++id) {
    if (auto fault = tree_fault(file, object_of(file, id)); !fault.empty()) return fault;
  }

  using object_t = gx_object_gene_rec_t;
  if (auto fault = chain_fault_of(file, "following", [](const object_t& o) { return o.following; });
      !fault.empty()) {
    return fault;
  }
  if (auto fault = chain_fault_of(file, "previous", [](const object_t& o) { return o.previous; });
      !fault.empty()) {
    return fault;
  }
  const auto following_inst = [](const object_t& o) -> gx_object_id_t {
    const auto* instance = as_instance(o);
    return instance != nullptr ? instance->following_inst : gx_object_id_t{0};
  };
  if (auto fault = chain_fault_of(file, "following_inst", following_inst); !fault.empty()) {
    return fault;
  }
  const auto previous_inst = [](const object_t& o) -> gx_object_id_t {
    const auto* instance = as_instance(o);
    return instance != nullptr ? instance->previous_inst : gx_object_id_t{0};
  };
  return chain_fault_of(file, "previous_inst", previous_inst);
}
