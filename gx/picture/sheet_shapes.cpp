// The walks over what is drawn, in the order of drawing.
#include "gx/picture/sheet_shapes.h"

#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/picture/object_shapes.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"

namespace {
constexpr bool is_primitive(gx_type type) {
  return type >= gx_type::arc3p_2d && type <= gx_type::property_2d;
}

constexpr bool is_container(gx_type type) {
  return type >= gx_type::main && type <= gx_type::property_family && type != gx_type::net;
}

// The object after `id` in the depth-first walk below `root`; 0 at its end. A net's children are
// not entered.
int next_below(const gx_file_gene_recf_t& file, int id, int root) {
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

// An object without what is below it; a net whole.
void one_shape(const gx_file_gene_recf_t& file, int id, int inst, bool selected,
               const gx_sink_t& sink) {
  const gx_type type = gx_object_id_ptr(file, id).object_type;
  if (type == gx_type::net)
    gx_net_shapes(file, id, sink);
  else if (type == gx_type::pin)
    gx_pin_shape(file, id, inst, selected, sink);
  else if (is_primitive(type))
    gx_primitive_shape(file, id, inst, selected, sink);
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

// The symbol of an instance.
int checked_symbol(const gx_file_gene_recf_t& file, int inst, const char* operation) {
  check_object(file, inst, gx_type::instance, operation, "obj_inst_id :", "instance");
  const int symbol = gx_instance_info_ptr(file, inst).symbol;
  check_object(file, symbol, gx_type::symbol, operation, "symbol_id", "symbol");
  if (gx_inq_object_deleted(file, symbol)) {
    gx_debug(" %s : deleted: symbol_id %d\n", operation, symbol);
    gx_set_status(gx_code::object_id_invalid);
  }
  return symbol;
}

// Whether the property family `own` (0 for none) holds a property of the name of property `id`.
bool is_overridden(const gx_file_gene_recf_t& file, int id, int own) {
  return own > 0 && gx_object_id_ptr(file, id).object_type == gx_type::property_2d &&
         gx_find_property_name(file, own, gx_view(gx_property_info_ptr(file, id).name)) > 0;
}

// Calls visit(id) for every member of a family that is not deleted.
template <typename Visit>
void visit_members(const gx_file_gene_recf_t& file, gx_members members, Visit visit) {
  for (const int id : members)
    if (!gx_inq_object_deleted(file, id)) visit(id);
}
}  // namespace

void gx_tree_shapes(const gx_file_gene_recf_t& file, int root, int inst, bool selected,
                    const gx_sink_t& sink) {
  const auto& object = gx_object_id_ptr(file, root);
  if (object.object_type == gx_type::net) gx_set_status(gx_code::invalid_level);
  const bool is_page = object.object_type == gx_type::grid_2d;
  if (!is_page && sink.sees && !sink.sees(root, inst)) return;
  one_shape(file, root, inst, selected, sink);
  for (int id = object.child1; id > 0; id = next_below(file, id, root))
    one_shape(file, id, inst, selected, sink);
}

void lb_instance_shapes(const gx_file_gene_recf_t& file, int inst, const gx_sink_t& sink) {
  const int symbol = checked_symbol(file, inst, sink.instance_name);
  if (sink.opens) sink.opens(inst);
  const int properties = lb_inq_inst_child_id(file, inst).bodpropfam;
  const int body = lb_inq_symbol_child_id(file, symbol).body;
  if (body > 0) {
    const bool selected = gx_inq_object_selected(file, inst);
    const auto [graphics, texts] = lb_inq_graphics_property_id(file, body);
    if (graphics > 0) gx_tree_shapes(file, graphics, inst, selected, sink);
    if (texts > 0)
      for (const int id : gx_children(file, texts))
        if (!is_overridden(file, id, properties)) gx_tree_shapes(file, id, inst, selected, sink);
  }
  for (const auto [pin, pinpropfam] : lb_pins(file, inst)) {
    if (gx_inq_object_deleted(file, pinpropfam)) continue;
    const bool selected =
        gx_inq_object_selected(file, pinpropfam) || gx_inq_object_selected(file, pin);
    gx_tree_shapes(file, pinpropfam, inst, selected, sink);
    if (selected || !sink.marks_pin || sink.marks_pin(pinpropfam)) {
      gx_tree_shapes(file, pin, inst, selected, sink);
    } else {
      for (const int id : gx_children(file, pin)) gx_tree_shapes(file, id, inst, selected, sink);
    }
  }
  if (properties > 0) gx_tree_shapes(file, properties, inst, false, sink);
  if (sink.closes) sink.closes(inst);
}

void lb_frame_shapes(const gx_file_gene_recf_t& file, const gx_sink_t& sink) {
  visit_members(file, lb_frames(file), [&](int frame) {
    gx_tree_shapes(file, frame, 0, gx_inq_object_selected(file, frame), sink);
  });
}

void lb_all_instance_shapes(const gx_file_gene_recf_t& file, const gx_sink_t& sink) {
  visit_members(file, lb_instances(file), [&](int inst) { lb_instance_shapes(file, inst, sink); });
}

void lb_all_net_shapes(const gx_file_gene_recf_t& file, const gx_sink_t& sink) {
  visit_members(file, lb_nets(file), [&](int net) { gx_net_shapes(file, net, sink); });
}
