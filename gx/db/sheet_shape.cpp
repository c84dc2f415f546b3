// Whether a file has all that the queries of sheets ask for. Reading a file makes sure that what it
// holds is of the right types (reference_check.cpp); here is what it may still lack.
#include <array>

#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/db/query_steps.h"

namespace {

constexpr std::array families = {gx_type::instance_family, gx_type::symbol_family,
                                 gx_type::net_family, gx_type::vertex_family,
                                 gx_type::frame_family};

std::string without(const gx_object_gene_rec_t& object, std::string_view what) {
  return "object " + std::to_string(object.object_id) + ": " +
         std::string(gx_type_name(object.object_type)) + " without " + std::string(what);
}

bool is_a(const gx_file_gene_recf_t& file, int id, gx_type type) {
  return id > 0 && gx_object_id_ptr(file, id).object_type == type;
}

std::string instance_fault(const gx_file_gene_recf_t& file, int id) {
  const auto& instance = gx_instance_info_ptr(file, id);
  if (instance.symbol == 0) return without(instance.gene, "symbol");
  const auto children = lb_inq_inst_child_id(file, id);
  if (!is_a(file, children.pin_family, gx_type::pin_family)) {
    return without(instance.gene, "pins");
  }
  if (!is_a(file, children.bodpropfam, gx_type::bodpropfam)) {
    return without(instance.gene, "properties");
  }
  return {};
}

}  // namespace

std::string gx_sheet_fault(const gx_file_gene_recf_t& file) {
  if (!gx_object_id_ok(file, file.primary_object)) return "no main object";
  for (const gx_type family : families) {
    if (gx_last_child_of_type(file, file.primary_object, family) == 0) {
      return "no " + std::string(gx_type_name(family));
    }
  }
  for (const auto* object : file.ptr_to_ar_objindex) {
    if (object->object_type == gx_type::symbol &&
        lb_inq_symbol_child_id(file, object->object_id).pin_family == 0) {
      return without(*object, "pins");
    }
    if (object->object_type != gx_type::instance) continue;
    if (auto fault = instance_fault(file, object->object_id); !fault.empty()) return fault;
  }
  return {};
}
