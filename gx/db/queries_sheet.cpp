// The queries that walk a sheet: its families, the children of instances and symbols, pin pairs
// and the parts of nets. They check the type of every object they hand out.
#include <algorithm>

#include "gx/db/object_access.h"
#include "gx/db/query_steps.h"
#include "gx/text/debug.h"

namespace {

constexpr gx_family_query_t instances = {gx_type::instance_family, gx_type::instance,
                                         "LB_INQ_FIRST_INST_ID", "fam_inst_id"};
constexpr gx_family_query_t symbols = {gx_type::symbol_family, gx_type::symbol,
                                       "LB_INQ_FIRST_SYMBOL_ID", "fam_symb_id"};
constexpr gx_family_query_t nets = {gx_type::net_family, gx_type::net, "LB_INQ_FIRST_NET_ID",
                                    "fam_net_id"};
constexpr gx_family_query_t vertices = {gx_type::vertex_family, gx_type::vertex_2d,
                                        "LB_INQ_FIRST_VERTEX_ID", "fam_vertex_id"};
constexpr gx_family_query_t frames = {gx_type::frame_family, gx_type::frame,
                                      "LB_INQ_FIRST_FRAME_ID", "fam_frame_id"};

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
  if (query.refuse_deleted && ((of_symbol.status | of_inst.status) & gx_flag_deleted) != 0) {
    const bool symbol_side = (of_symbol.status & gx_flag_deleted) != 0;
    gx_debug(" %s :  child_%c : deleted \n", query.operation, symbol_side ? 's' : 'i');
    gx_set_status(gx_code::file_data_invalid);
  }
  if (of_symbol.object_type != gx_type::pin || of_inst.object_type != gx_type::pinpropfam) {
    gx_debug(" %s : type child \n", query.operation);
    gx_set_status(gx_code::object_type_invalid);
  }
  return {of_symbol.object_id, of_inst.object_id};
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

// The parts of a net of one type, in child order: those directly under it and those under a
// wrapper (its graphics or its property family), wherever the wrapper stands.
struct net_part_t {
  gx_type part, wrapper;
};
constexpr net_part_t segments = {gx_type::segment, gx_type::graphics};
constexpr net_part_t properties = {gx_type::property_2d, gx_type::property_family};

gx_object_id_t behind(const gx_file_gene_recf_t& file, int net, int id) {
  const auto* object = &gx_object_id_ptr(file, id);
  if (object->following < 1 && object->father != net && object->father > 0) {
    object = &gx_object_id_ptr(file, object->father);  // out of the wrapper
  }
  return object->following;
}

gx_object_id_t part_from(const gx_file_gene_recf_t& file, int net, int id, net_part_t wanted) {
  while (id > 0) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.object_type == wanted.part) return object.object_id;
    const bool enter = object.object_type == wanted.wrapper && object.father == net;
    id = enter && object.child1 > 0 ? object.child1 : behind(file, net, id);
  }
  return 0;
}

gx_object_id_t first_part(const gx_file_gene_recf_t& file, int net, net_part_t wanted) {
  const auto& object = gx_object_id_ptr(file, net);
  gx_check_object_type(object, gx_type::net);
  return part_from(file, net, object.child1, wanted);
}

}  // namespace

gx_object_id_t gx_next_member(const gx_file_gene_recf_t& file, int id, gx_type member) {
  const int next = gx_object_id_ptr(file, id).following;
  if (next < 1) return 0;
  const auto& object = gx_object_id_ptr(file, next);
  if (object.object_type != member) gx_set_status(gx_code::object_id_invalid);
  return object.object_id;
}

gx_first_t gx_first_member(const gx_file_gene_recf_t& file, const gx_family_query_t& query) {
  if (!gx_object_id_ok(file, file.primary_object)) {
    gx_debug("  %s  : primary_obj_id  %12d\n", query.operation, file.primary_object);
    gx_set_status(gx_code::object_id_invalid);
  }
  for (const int id : gx_children(file, file.primary_object)) {
    const auto& family = gx_object_id_ptr(file, id);
    if (family.object_type != query.family) continue;
    if (!gx_object_id_ok(file, family.child1)) return {family.object_id, 0};
    const auto& member = gx_object_id_ptr(file, family.child1);
    gx_check_object_type(member, query.member);
    return {family.object_id, member.object_id};
  }
  gx_debug("  %s  : %s  %12d\n", query.operation, query.id_name, 0);
  gx_set_status(gx_code::object_id_invalid);
}

gx_object_id_t gx_last_child_of_type(const gx_file_gene_recf_t& file, int father, gx_type type) {
  gx_object_id_t found = 0;
  for (const int id : gx_children(file, father)) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.object_type == type) found = object.object_id;
  }
  return found;
}

// --- families

gx_first_t lb_inq_first_inst_id(const gx_file_gene_recf_t& file) {
  return gx_first_member(file, instances);
}
gx_object_id_t lb_inq_next_inst_id(const gx_file_gene_recf_t& file, int inst) {
  return gx_next_member(file, inst, instances.member);
}
gx_first_t lb_inq_first_symbol_id(const gx_file_gene_recf_t& file) {
  return gx_first_member(file, symbols);
}
gx_object_id_t lb_inq_next_symbol_id(const gx_file_gene_recf_t& file, int symbol) {
  return gx_next_member(file, symbol, symbols.member);
}
gx_first_t lb_inq_first_net_id(const gx_file_gene_recf_t& file) {
  return gx_first_member(file, nets);
}
gx_object_id_t lb_inq_next_net_id(const gx_file_gene_recf_t& file, int net) {
  return gx_next_member(file, net, nets.member);
}
gx_first_t lb_inq_first_vertex_id(const gx_file_gene_recf_t& file) {
  return gx_first_member(file, vertices);
}
gx_object_id_t lb_inq_next_vertex_id(const gx_file_gene_recf_t& file, int vertex) {
  return gx_next_member(file, vertex, vertices.member);
}
gx_first_t lb_inq_first_frame_id(const gx_file_gene_recf_t& file) {
  return gx_first_member(file, frames);
}
gx_object_id_t lb_inq_next_frame_id(const gx_file_gene_recf_t& file, int frame) {
  return gx_next_member(file, frame, frames.member);
}

// --- instances of one symbol

namespace {
gx_object_id_t instance_of_symbol(const gx_file_gene_recf_t& file, int symbol, int inst) {
  if (inst < 1) return 0;
  const auto& instance = gx_instance_info_ptr(file, inst);
  if (instance.symbol != symbol) {
    gx_debug("  instance dont belong at this symbol ??? \n");
    gx_set_status(gx_code::object_id_invalid);
  }
  return instance.gene.object_id;
}
}  // namespace

gx_object_id_t lb_inq_first_inst_ofsymb_id(const gx_file_gene_recf_t& file, int symbol) {
  if (!gx_object_id_ok(file, symbol)) {
    gx_debug("  LB_INQ_FIRST_INST_OFSYMB_ID  : symbol_id (invalid) : %d\n", symbol);
    gx_set_status(gx_code::object_id_invalid);
  }
  return instance_of_symbol(file, symbol, gx_symbol_info_ptr(file, symbol).instance);
}

gx_object_id_t lb_inq_next_inst_ofsymb_id(const gx_file_gene_recf_t& file, int symbol, int inst) {
  if (!gx_object_id_ok(file, symbol)) {
    gx_debug("  LB_INQ_NEXT_INST_OFSYMB_ID  : symbol_id (invalid) : %d\n", symbol);
    gx_set_status(gx_code::object_id_invalid);
  }
  const int next = gx_instance_info_ptr(file, inst).following_inst;
  instance_of_symbol(file, symbol, inst);
  return instance_of_symbol(file, symbol, next);
}

// --- children

gx_inst_children_t lb_inq_inst_child_id(const gx_file_gene_recf_t& file, int inst) {
  const auto& instance = gx_instance_info_ptr(file, inst);
  if (instance.gene.child1 < 1) return {};
  const auto& child = gx_object_id_ptr(file, instance.gene.child1);
  if (child.object_type == gx_type::pin_family) return {child.following, child.object_id};
  if (child.object_type == gx_type::bodpropfam) return {child.object_id, child.following};
  return {};
}

gx_symbol_children_t lb_inq_symbol_child_id(const gx_file_gene_recf_t& file, int symbol) {
  gx_check_object_type(gx_object_id_ptr(file, symbol), gx_type::symbol);
  gx_symbol_children_t children;
  for (const int id : gx_children(file, symbol)) {
    const auto& object = gx_object_id_ptr(file, id);
    if (object.object_type == gx_type::body) children.body = object.object_id;
    if (object.object_type == gx_type::pin_family) children.pin_family = object.object_id;
    if (object.object_type == gx_type::instance) children.instance = object.object_id;
  }
  return children;
}

gx_graphics_property_t lb_inq_graphics_property_id(const gx_file_gene_recf_t& file, int holder) {
  return {gx_last_child_of_type(file, holder, gx_type::graphics),
          gx_last_child_of_type(file, holder, gx_type::property_family)};
}

// --- pins

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
  const auto& instance = gx_object_id_ptr(file, family.father);
  gx_check_object_type(instance, gx_type::instance);
  return instance.object_id;
}

gx_pointreal_t lb_inq_inst_origin(const gx_file_gene_recf_t& file, int inst) {
  const auto& instance = gx_instance_info_ptr(file, inst).gene;
  if ((instance.status & gx_flag_deleted) != 0) gx_set_status(gx_code::file_data_invalid);
  return instance.origin;
}

// --- parts of a net

gx_object_id_t gx_inq_first_net_segment_id(const gx_file_gene_recf_t& file, int net) {
  return first_part(file, net, segments);
}
gx_object_id_t gx_inq_next_net_segment_id(const gx_file_gene_recf_t& file, int net, int segment) {
  return part_from(file, net, behind(file, net, segment), segments);
}
gx_object_id_t gx_inq_first_net_property_id(const gx_file_gene_recf_t& file, int net) {
  return first_part(file, net, properties);
}
gx_object_id_t gx_inq_next_net_property_id(const gx_file_gene_recf_t& file, int net, int property) {
  return part_from(file, net, behind(file, net, property), properties);
}

// --- ranges

gx_siblings gx_children(const gx_file_gene_recf_t& file, int father) {
  return {file, std::max<int>(0, gx_object_id_ptr(file, father).child1)};
}

gx_siblings::iterator& gx_siblings::iterator::operator++() {
  id_ = std::max<int>(0, gx_object_id_ptr(*file_, id_).following);
  return *this;
}
