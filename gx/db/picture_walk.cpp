#include "gx/db/picture_walk.h"

#include "gx/text/debug.h"
#include "gx/text/status.h"

namespace {
constexpr bool is_container(gx_type type) {
  return type >= gx_type::main && type <= gx_type::property_family && type != gx_type::net;
}

// An object of the sheet whose id and type are sound.
void check_object(const gx_file_gene_recf_t& file, int id, gx_type type, const char* operation,
                  const char* id_name, const char* type_name) {
  if (!gx_object_id_ok(file, id)) {
    gx_debug(" %s : %s %d\n", operation, id_name, id);
    gx_set_status(gx_code::object_id_invalid);
  }
  const gx_type found = gx_object_id_ptr(file, id).object_type;
  if (found == type) return;
  const auto name = gx_type_name(found);
  gx_debug(" %s : %s : type : %15.*s\n", operation, type_name, static_cast<int>(name.size()),
           name.data());
  gx_set_status(gx_code::object_type_invalid);
}
}  // namespace

int gx_next_below(const gx_file_gene_recf_t& file, int id, int root) {
  const auto& entered = gx_object_id_ptr(file, id);
  if (is_container(entered.object_type) && entered.child1 > 0) return entered.child1;
  while (id != root) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.following > 0) return object.following;
    id = object.father;
    if (id < 1) return 0;
  }
  return 0;
}

int lb_checked_symbol(const gx_file_gene_recf_t& file, int inst, const char* operation) {
  check_object(file, inst, gx_type::instance, operation, "obj_inst_id :", "instance");
  const int symbol = gx_instance_info_ptr(file, inst).symbol;
  check_object(file, symbol, gx_type::symbol, operation, "symbol_id", "symbol");
  if (gx_inq_object_deleted(file, symbol)) {
    gx_debug(" %s : deleted: symbol_id %d\n", operation, symbol);
    gx_set_status(gx_code::object_id_invalid);
  }
  return symbol;
}

bool lb_is_overridden(const gx_file_gene_recf_t& file, int id, int own) {
  return own > 0 && gx_object_id_ptr(file, id).object_type == gx_type::property_2d &&
         gx_find_property_name(file, own, gx_view(gx_property_info_ptr(file, id).name)) > 0;
}
