// The queries that walk a symbol file: components, their bodies, pins, symbols and frames.
#include "gx/db/object_access.h"
#include "gx/db/query_steps.h"

namespace {

constexpr gx_family_query_t components = {gx_type::component_family, gx_type::component,
                                          "WN_INQ_FIRST_COMP_ID", "fam_comp_id"};

// The first child of a family (0: no family, or an empty one), which must have the member type.
gx_object_id_t first_in(const gx_file_gene_recf_t& file, int family, gx_type member) {
  if (family < 1) return 0;
  const int child = gx_object_id_ptr(file, family).child1;
  if (child < 1) return 0;
  const auto& object = gx_object_id_ptr(file, child);
  gx_check_object_type(object, member);
  return object.object_id;
}

}  // namespace

gx_first_t wn_inq_first_comp_id(const gx_file_gene_recf_t& file) {
  return gx_first_member(file, components);
}

gx_object_id_t wn_inq_next_comp_id(const gx_file_gene_recf_t& file, int comp) {
  return gx_next_member(file, comp, components.member);
}

gx_comp_children_t wn_inq_comp_child_id(const gx_file_gene_recf_t& file, int comp) {
  gx_check_object_type(gx_object_id_ptr(file, comp), gx_type::component);
  return {gx_last_child_of_type(file, comp, gx_type::body),
          gx_last_child_of_type(file, comp, gx_type::pin_family),
          gx_last_child_of_type(file, comp, gx_type::symbol_family),
          gx_last_child_of_type(file, comp, gx_type::frame)};
}

gx_object_id_t wn_inq_first_symbol_id(const gx_file_gene_recf_t& file, int comp) {
  return first_in(file, wn_inq_comp_child_id(file, comp).symbol_family, gx_type::symbol);
}

gx_object_id_t wn_inq_next_symbol_id(const gx_file_gene_recf_t& file, int symbol) {
  return gx_next_member(file, symbol, gx_type::symbol);
}

gx_symbol_children_t wn_inq_symbol_child_id(const gx_file_gene_recf_t& file, int symbol) {
  const auto children = lb_inq_symbol_child_id(file, symbol);
  return {children.body, children.pin_family, 0};
}

gx_graphics_property_t wn_inq_graphics_property_id(const gx_file_gene_recf_t& file, int holder) {
  const auto type = gx_object_id_ptr(file, holder).object_type;
  if (type != gx_type::body && type != gx_type::frame) gx_set_status(gx_code::object_id_invalid);
  return lb_inq_graphics_property_id(file, holder);
}

gx_object_id_t wn_inq_comp_first_pin_id(const gx_file_gene_recf_t& file, int comp) {
  return first_in(file, wn_inq_comp_child_id(file, comp).pin_family, gx_type::pin);
}

gx_object_id_t wn_inq_comp_next_pin_id(const gx_file_gene_recf_t& file, int pin) {
  return gx_next_member(file, pin, gx_type::pin);
}

gx_object_id_t wn_inq_symbol_first_pin_id(const gx_file_gene_recf_t& file, int symbol) {
  return first_in(file, wn_inq_symbol_child_id(file, symbol).pin_family, gx_type::pin);
}

gx_object_id_t wn_inq_symbol_next_pin_id(const gx_file_gene_recf_t& file, int pin) {
  return gx_next_member(file, pin, gx_type::pin);
}
