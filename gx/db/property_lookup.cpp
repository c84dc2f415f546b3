// Finding a property by its name, under a holder or by the hierarchy: an instance falls back on
// the properties of its symbol's body.
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/text/debug.h"
#include "gx/text/strings.h"

namespace {

bool is_live_and_named(const gx_object_property_rec_t& property, std::string_view name) {
  return (property.gene.status & gx_flag_deleted) == 0 && gx_iden(name, gx_view(property.name));
}

const gx_object_property_rec_t* find_under(const gx_file_gene_recf_t& file, int holder,
                                           std::string_view name) {
  const int property = gx_find_property_name(file, holder, name);
  return property == 0 ? nullptr : &gx_property_info_ptr(file, property);
}

const gx_object_property_rec_t* find_among(const gx_file_gene_recf_t& file, gx_siblings properties,
                                           std::string_view name) {
  for (const int id : properties) {
    const auto& property = gx_property_info_ptr(file, id);
    if (is_live_and_named(property, name)) return &property;
  }
  return nullptr;
}

gx_siblings children_if_any(const gx_file_gene_recf_t& file, int holder) {
  return holder > 0 ? gx_children(file, holder) : gx_siblings(file, 0);
}

// The object must be there, alive and of that type.
void check_owner(const gx_file_gene_recf_t& file, int id, gx_type type) {
  const auto& object = gx_object_id_ptr(file, id);
  if ((object.status & gx_flag_deleted) != 0) gx_set_status(gx_code::file_data_invalid);
  gx_check_object_type(object, type);
}

std::optional<gx_string_record_t> value_of(const gx_object_property_rec_t* property) {
  if (property == nullptr) return std::nullopt;
  gx_string_record_t value;
  gx_value_string(property->nvalue, value);
  return value;
}

}  // namespace

gx_object_id_t gx_find_property_name(const gx_file_gene_recf_t& file, int holder,
                                     std::string_view name) {
  const auto type = gx_object_id_ptr(file, holder).object_type;
  const bool is_net = type == gx_type::net;
  if (!is_net && type != gx_type::bodpropfam && type != gx_type::pinpropfam &&
      type != gx_type::pin && type != gx_type::property_family) {
    gx_debug("gx_find_property_name # father type invalid  \n");
    gx_debug(" : object_type : %15s\n", gx_type_name(type).data());
    gx_set_status(gx_code::object_type_invalid);
  }
  for (const int id : gx_children(file, holder)) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.object_type != gx_type::property_2d) {
      if (is_net) continue;  // its segments and families
      gx_debug("gx_find_property_name # property type invalid :  \n");
      gx_set_status(gx_code::object_type_invalid);
    }
    if (is_live_and_named(gx_property_info_ptr(file, id), name)) return object.object_id;
  }
  return 0;
}

gx_siblings lb_inst_properties(const gx_file_gene_recf_t& file, int inst) {
  return children_if_any(file, lb_inq_inst_child_id(file, inst).bodpropfam);
}

gx_siblings lb_symbol_properties(const gx_file_gene_recf_t& file, int symbol) {
  const int body = lb_inq_symbol_child_id(file, symbol).body;
  if (body == 0) return {file, 0};
  return children_if_any(file, lb_inq_graphics_property_id(file, body).property_family);
}

gx_siblings lb_frame_properties(const gx_file_gene_recf_t& file, int frame) {
  return children_if_any(file, lb_inq_graphics_property_id(file, frame).property_family);
}

const gx_object_property_rec_t* lb_find_prop_inst(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name) {
  check_owner(file, inst, gx_type::instance);
  if (const auto* own = find_among(file, lb_inst_properties(file, inst), name)) return own;
  return find_among(file, lb_symbol_properties(file, gx_instance_info_ptr(file, inst).symbol),
                    name);
}

const gx_object_property_rec_t* lb_find_prop_net(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name) {
  check_owner(file, net, gx_type::net);
  for (const int id : lb_net_properties(file, net)) {
    const auto& property = gx_property_info_ptr(file, id);
    if (is_live_and_named(property, name)) return &property;
  }
  return nullptr;
}

std::optional<gx_string_record_t> lb_get_valueof_prop_pin(const gx_file_gene_recf_t& file, int pin,
                                                          std::string_view name) {
  check_owner(file, pin, gx_type::pin);
  return value_of(find_under(file, pin, name));
}

std::optional<gx_string_record_t> lb_get_valueof_prop_pinpropfam(const gx_file_gene_recf_t& file,
                                                                 int pinpropfam,
                                                                 std::string_view name) {
  check_owner(file, pinpropfam, gx_type::pinpropfam);
  return value_of(find_under(file, pinpropfam, name));
}

std::optional<gx_string_record_t> lb_get_valueof_prop_inst(const gx_file_gene_recf_t& file,
                                                           int inst, std::string_view name) {
  return value_of(lb_find_prop_inst(file, inst, name));
}

std::optional<gx_string_record_t> lb_get_valueof_prop_net(const gx_file_gene_recf_t& file, int net,
                                                          std::string_view name) {
  return value_of(lb_find_prop_net(file, net, name));
}
