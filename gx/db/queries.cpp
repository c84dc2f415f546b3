#include "gx/db/queries.h"

#include "gx/db/object_access.h"
#include "gx/text/messages/debug.h"
#include "gx/text/strings.h"

namespace {

gx_object_id_t id16(int id) { return static_cast<gx_object_id_t>(id); }

// A family under the primary object, what it holds, and how its "first" query names itself in the
// debug file.
struct family_query_t {
  gx_type family, member;
  const char* operation;
  const char* id_name;
};
constexpr family_query_t instances = {gx_type::instance_family, gx_type::instance,
                                      "LB_INQ_FIRST_INST_ID", "fam_inst_id"};
constexpr family_query_t symbols = {gx_type::symbol_family, gx_type::symbol,
                                    "LB_INQ_FIRST_SYMBOL_ID", "fam_symb_id"};
constexpr family_query_t nets = {gx_type::net_family, gx_type::net, "LB_INQ_FIRST_NET_ID",
                                 "fam_net_id"};
constexpr family_query_t vertices = {gx_type::vertex_family, gx_type::vertex_2d,
                                     "LB_INQ_FIRST_VERTEX_ID", "fam_vertex_id"};
constexpr family_query_t frames = {gx_type::frame_family, gx_type::frame, "LB_INQ_FIRST_FRAME_ID",
                                   "fam_frame_id"};
constexpr family_query_t components = {gx_type::component_family, gx_type::component,
                                       "WN_INQ_FIRST_COMP_ID", "fam_comp_id"};

// The first child of a family, which must have the member type; 0 when it has none.
gx_object_id_t first_in(const gx_file_gene_recf_t& file, int family, gx_type member) {
  const int child = gx_object_id_ptr(file, family).child1;
  if (!gx_object_id_ok(file, child)) return 0;
  gx_check_object_type(gx_object_id_ptr(file, child), member);
  return id16(child);
}

gx_first_t first_member(const gx_file_gene_recf_t& file, const family_query_t& query) {
  if (!gx_object_id_ok(file, file.primary_object)) {
    gx_debug("  %s  : primary_obj_id  %12d\n", query.operation, file.primary_object);
    gx_set_status(gx_code::object_id_invalid);
  }
  const int family = gx_first_child_of(file, file.primary_object, query.family);
  if (family == 0) {
    gx_debug("  %s  : %s  %12d\n", query.operation, query.id_name, 0);
    gx_set_status(gx_code::object_id_invalid);
  }
  return {id16(family), first_in(file, family, query.member)};
}

gx_object_id_t next_member(const gx_file_gene_recf_t& file, int id, gx_type member) {
  const int next = gx_object_id_ptr(file, id).following;
  if (next < 1) return 0;
  if (gx_object_id_ptr(file, next).object_type != member) {
    gx_set_status(gx_code::object_id_invalid);
  }
  return id16(next);
}

}  // namespace

// --- families of a sheet

gx_first_t lb_inq_first_inst_id(const gx_file_gene_recf_t& file) {
  return first_member(file, instances);
}
gx_object_id_t lb_inq_next_inst_id(const gx_file_gene_recf_t& file, int inst) {
  return next_member(file, inst, instances.member);
}
gx_first_t lb_inq_first_symbol_id(const gx_file_gene_recf_t& file) {
  return first_member(file, symbols);
}
gx_object_id_t lb_inq_next_symbol_id(const gx_file_gene_recf_t& file, int symbol) {
  return next_member(file, symbol, symbols.member);
}
gx_first_t lb_inq_first_net_id(const gx_file_gene_recf_t& file) { return first_member(file, nets); }
gx_object_id_t lb_inq_next_net_id(const gx_file_gene_recf_t& file, int net) {
  return next_member(file, net, nets.member);
}
gx_first_t lb_inq_first_vertex_id(const gx_file_gene_recf_t& file) {
  return first_member(file, vertices);
}
gx_object_id_t lb_inq_next_vertex_id(const gx_file_gene_recf_t& file, int vertex) {
  return next_member(file, vertex, vertices.member);
}
gx_first_t lb_inq_first_frame_id(const gx_file_gene_recf_t& file) {
  return first_member(file, frames);
}
gx_object_id_t lb_inq_next_frame_id(const gx_file_gene_recf_t& file, int frame) {
  return next_member(file, frame, frames.member);
}

// --- instances of one symbol

namespace {

void check_symbol_id(const gx_file_gene_recf_t& file, int symbol, const char* operation) {
  if (gx_object_id_ok(file, symbol)) return;
  gx_debug("  %s  : symbol_id (invalid) : %d\n", operation, symbol);
  gx_set_status(gx_code::object_id_invalid);
}

gx_object_id_t instance_of_symbol(const gx_file_gene_recf_t& file, int symbol, int inst) {
  if (inst < 1) return 0;
  if (gx_instance_info_ptr(file, inst).symbol != symbol) {
    gx_debug("  instance dont belong at this symbol ??? \n");
    gx_set_status(gx_code::object_id_invalid);
  }
  return id16(inst);
}

}  // namespace

gx_object_id_t lb_inq_first_inst_ofsymb_id(const gx_file_gene_recf_t& file, int symbol) {
  check_symbol_id(file, symbol, "LB_INQ_FIRST_INST_OFSYMB_ID");
  return instance_of_symbol(file, symbol, gx_symbol_info_ptr(file, symbol).instance);
}

gx_object_id_t lb_inq_next_inst_ofsymb_id(const gx_file_gene_recf_t& file, int symbol, int inst) {
  check_symbol_id(file, symbol, "LB_INQ_NEXT_INST_OFSYMB_ID");
  const int next = gx_instance_info_ptr(file, inst).following_inst;
  instance_of_symbol(file, symbol, inst);
  return instance_of_symbol(file, symbol, next);
}

// --- children

gx_inst_children_t lb_inq_inst_child_id(const gx_file_gene_recf_t& file, int inst) {
  gx_instance_info_ptr(file, inst);
  return {id16(gx_first_child_of(file, inst, gx_type::bodpropfam)),
          id16(gx_first_child_of(file, inst, gx_type::pin_family))};
}

gx_symbol_children_t lb_inq_symbol_child_id(const gx_file_gene_recf_t& file, int symbol) {
  gx_symbol_info_ptr(file, symbol);
  return {id16(gx_last_child_of(file, symbol, gx_type::body)),
          id16(gx_last_child_of(file, symbol, gx_type::pin_family)),
          id16(gx_last_child_of(file, symbol, gx_type::instance))};
}

gx_graphics_property_t lb_inq_graphics_property_id(const gx_file_gene_recf_t& file, int holder) {
  gx_object_id_ptr(file, holder);
  return {id16(gx_first_child_of(file, holder, gx_type::graphics)),
          id16(gx_first_child_of(file, holder, gx_type::property_family))};
}

// --- pins

namespace {

// How a pair of pins names itself in the debug file.
struct pin_query_t {
  const char* operation;
  bool refuse_deleted;
};
constexpr pin_query_t first_inst_pin = {"LB_INQ_INST_FIRST_PIN_ID", true};
constexpr pin_query_t next_inst_pin = {"LB_INQ_INST_NEXT_PIN_ID", true};
constexpr pin_query_t first_symbol_pin = {"LB_INQ_SYMBOL_FIRST_PIN_ID", false};
constexpr pin_query_t next_symbol_pin = {"LB_INQ_SYMBOL_NEXT_PIN_ID", false};

// The pair of the two ids when both are there and fit; an empty pair when either chain has ended.
gx_pin_pair_t checked_pair(const gx_file_gene_recf_t& file, int pin, int pinpropfam,
                           const pin_query_t& query) {
  if (pin < 1 || pinpropfam < 1) return {};
  const auto& of_symbol = gx_object_id_ptr(file, pin);
  const auto& of_inst = gx_object_id_ptr(file, pinpropfam);
  if (query.refuse_deleted && (gx_is_deleted(of_symbol) || gx_is_deleted(of_inst))) {
    const bool symbol_side = gx_is_deleted(of_symbol);
    gx_debug(" %s :  child_%c : deleted \n", query.operation, symbol_side ? 's' : 'i');
    gx_set_status(gx_code::file_data_invalid);
  }
  if (of_symbol.object_type != gx_type::pin || of_inst.object_type != gx_type::pinpropfam) {
    gx_debug(" %s : type child \n", query.operation);
    gx_set_status(gx_code::object_type_invalid);
  }
  return {id16(pin), id16(pinpropfam)};
}

gx_pin_pair_t next_pair(const gx_file_gene_recf_t& file, gx_pin_pair_t pair,
                        const pin_query_t& query) {
  return checked_pair(file, gx_object_id_ptr(file, pair.pin).following,
                      gx_object_id_ptr(file, pair.pinpropfam).following, query);
}

int first_child_of_pin_family(const gx_file_gene_recf_t& file, int pin_family) {
  const auto& family = gx_object_id_ptr(file, pin_family);
  gx_check_object_type(family, gx_type::pin_family);
  return family.child1;
}

}  // namespace

gx_pin_pair_t lb_inq_inst_first_pin_id(const gx_file_gene_recf_t& file, int inst) {
  const int symbol = gx_instance_info_ptr(file, inst).symbol;
  const int of_inst = first_child_of_pin_family(file, lb_inq_inst_child_id(file, inst).pin_family);
  const int of_symbol =
      first_child_of_pin_family(file, lb_inq_symbol_child_id(file, symbol).pin_family);
  return checked_pair(file, of_symbol, of_inst, first_inst_pin);
}

gx_pin_pair_t lb_inq_inst_next_pin_id(const gx_file_gene_recf_t& file, gx_pin_pair_t pair) {
  return next_pair(file, pair, next_inst_pin);
}

gx_pin_pair_t lb_inq_symbol_first_pin_id(const gx_file_gene_recf_t& file, int symbol) {
  const auto children = lb_inq_symbol_child_id(file, symbol);
  if (children.instance == 0) return {};
  const int of_symbol = first_child_of_pin_family(file, children.pin_family);
  const int of_inst =
      first_child_of_pin_family(file, lb_inq_inst_child_id(file, children.instance).pin_family);
  return checked_pair(file, of_symbol, of_inst, first_symbol_pin);
}

gx_pin_pair_t lb_inq_symbol_next_pin_id(const gx_file_gene_recf_t& file, gx_pin_pair_t pair) {
  return next_pair(file, pair, next_symbol_pin);
}

gx_object_id_t lb_instance_of_pin_id(const gx_file_gene_recf_t& file, int pinpropfam) {
  const auto& pin = gx_object_id_ptr(file, pinpropfam);
  if (pin.object_type != gx_type::pinpropfam) {
    gx_debug(" LB_INSTANCE_OF_PIN_ID : pinpropfam_object_type : %10s\n",
             gx_type_name(pin.object_type).data());
    gx_set_status(gx_code::object_type_invalid);
  }
  const auto& family = gx_object_id_ptr(file, pin.father);
  gx_check_object_type(family, gx_type::pin_family);
  gx_check_object_type(gx_object_id_ptr(file, family.father), gx_type::instance);
  return family.father;
}

gx_pointreal_t lb_inq_inst_origin(const gx_file_gene_recf_t& file, int inst) {
  const auto& instance = gx_instance_info_ptr(file, inst).gene;
  if (gx_is_deleted(instance)) gx_set_status(gx_code::file_data_invalid);
  return instance.origin;
}

// --- property lookup

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
  if (!is_net) {  // a net also holds its segments and families
    for (const int id : gx_children(file, holder)) {
      if (gx_object_id_ptr(file, id).object_type == gx_type::property_2d) continue;
      gx_debug("gx_find_property_name # property type invalid :  \n");
      gx_set_status(gx_code::object_type_invalid);
    }
  }
  const auto* property = gx_find_prop(file, holder, name);
  return property != nullptr ? property->gene.object_id : gx_object_id_t{0};
}

namespace {

// The object must be there, alive and of that type.
void check_owner(const gx_file_gene_recf_t& file, int id, gx_type type) {
  const auto& object = gx_object_id_ptr(file, id);
  if (gx_is_deleted(object)) gx_set_status(gx_code::file_data_invalid);
  gx_check_object_type(object, type);
}

std::string or_numbered(const gx_object_property_rec_t* property, std::string_view prefix, int id) {
  if (property != nullptr && property->nvalue.len > 0)
    return std::string(gx_view(property->nvalue));
  return std::string(prefix) + std::to_string(id);
}

std::optional<gx_string_record_t> value_of(const gx_object_property_rec_t* property) {
  if (property == nullptr) return std::nullopt;
  return gx_string(gx_view(property->nvalue));
}

}  // namespace

const gx_object_property_rec_t* lb_find_prop_inst(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name) {
  check_owner(file, inst, gx_type::instance);
  return gx_find_inst_prop(file, inst, name);
}

const gx_object_property_rec_t* lb_find_prop_net(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name) {
  check_owner(file, net, gx_type::net);
  return gx_find_net_prop(file, net, name);
}

std::optional<gx_string_record_t> lb_get_valueof_prop_pin(const gx_file_gene_recf_t& file, int pin,
                                                          std::string_view name) {
  check_owner(file, pin, gx_type::pin);
  return value_of(gx_find_prop(file, pin, name));
}

std::optional<gx_string_record_t> lb_get_valueof_prop_pinpropfam(const gx_file_gene_recf_t& file,
                                                                 int pinpropfam,
                                                                 std::string_view name) {
  check_owner(file, pinpropfam, gx_type::pinpropfam);
  return value_of(gx_find_prop(file, pinpropfam, name));
}

std::optional<gx_string_record_t> lb_get_valueof_prop_inst(const gx_file_gene_recf_t& file,
                                                           int inst, std::string_view name) {
  return value_of(lb_find_prop_inst(file, inst, name));
}

std::optional<gx_string_record_t> lb_get_valueof_prop_net(const gx_file_gene_recf_t& file, int net,
                                                          std::string_view name) {
  return value_of(lb_find_prop_net(file, net, name));
}

std::string lb_inst_name(const gx_file_gene_recf_t& file, int inst) {
  return or_numbered(lb_find_prop_inst(file, inst, "INST"), "I_", inst);
}
std::string lb_net_name(const gx_file_gene_recf_t& file, int net) {
  return or_numbered(lb_find_prop_net(file, net, "NET"), "N_", net);
}
std::string lb_pin_name(const gx_file_gene_recf_t& file, gx_pin_pair_t pin) {
  return or_numbered(gx_find_prop_of_two(file, pin.pin, pin.pinpropfam, "PIN"), "P_",
                     pin.pinpropfam);
}

// --- parts of a net

gx_object_id_t gx_inq_first_net_segment_id(const gx_file_gene_recf_t& file, int net) {
  gx_net_info_ptr(file, net);
  return id16(gx_first_net_part(file, net, gx_net_segments));
}
gx_object_id_t gx_inq_next_net_segment_id(const gx_file_gene_recf_t& file, int net, int segment) {
  return id16(gx_next_net_part(file, net, segment, gx_net_segments));
}
gx_object_id_t gx_inq_first_net_property_id(const gx_file_gene_recf_t& file, int net) {
  gx_net_info_ptr(file, net);
  return id16(gx_first_net_part(file, net, gx_net_properties));
}
gx_object_id_t gx_inq_next_net_property_id(const gx_file_gene_recf_t& file, int net, int property) {
  return id16(gx_next_net_part(file, net, property, gx_net_properties));
}

// --- symbol files

namespace {
gx_object_id_t first_in_if_any(const gx_file_gene_recf_t& file, int family, gx_type member) {
  return family > 0 ? first_in(file, family, member) : gx_object_id_t{0};
}
}  // namespace

gx_first_t wn_inq_first_comp_id(const gx_file_gene_recf_t& file) {
  return first_member(file, components);
}

gx_object_id_t wn_inq_next_comp_id(const gx_file_gene_recf_t& file, int comp) {
  return next_member(file, comp, components.member);
}

gx_comp_children_t wn_inq_comp_child_id(const gx_file_gene_recf_t& file, int comp) {
  gx_check_object_type(gx_object_id_ptr(file, comp), gx_type::component);
  return {id16(gx_last_child_of(file, comp, gx_type::body)),
          id16(gx_last_child_of(file, comp, gx_type::pin_family)),
          id16(gx_last_child_of(file, comp, gx_type::symbol_family)),
          id16(gx_last_child_of(file, comp, gx_type::frame))};
}

gx_object_id_t wn_inq_first_symbol_id(const gx_file_gene_recf_t& file, int comp) {
  return first_in_if_any(file, wn_inq_comp_child_id(file, comp).symbol_family, gx_type::symbol);
}

gx_object_id_t wn_inq_next_symbol_id(const gx_file_gene_recf_t& file, int symbol) {
  return next_member(file, symbol, gx_type::symbol);
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
  return first_in_if_any(file, wn_inq_comp_child_id(file, comp).pin_family, gx_type::pin);
}

gx_object_id_t wn_inq_comp_next_pin_id(const gx_file_gene_recf_t& file, int pin) {
  return next_member(file, pin, gx_type::pin);
}

gx_object_id_t wn_inq_symbol_first_pin_id(const gx_file_gene_recf_t& file, int symbol) {
  return first_in_if_any(file, wn_inq_symbol_child_id(file, symbol).pin_family, gx_type::pin);
}

gx_object_id_t wn_inq_symbol_next_pin_id(const gx_file_gene_recf_t& file, int pin) {
  return next_member(file, pin, gx_type::pin);
}
