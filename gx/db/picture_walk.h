// The walks that every picture of a sheet takes, on the screen or on paper: an object with all
// below it, and an instance with its symbol, pins and properties. What is done with an object is
// the caller's.
#pragma once

#include "gx/db/object_access.h"
#include "gx/db/queries.h"

// What a picture shows: nets whole, primitives but vertices and tags, pins.
constexpr bool gx_is_drawn_primitive(gx_type type) {
  return type >= gx_type::arc3p_2d && type <= gx_type::property_2d;
}
constexpr bool gx_is_drawn(gx_type type) {
  return type == gx_type::net || type == gx_type::pin || gx_is_drawn_primitive(type);
}

// The object after `id` in the depth-first walk below `root`; 0 at its end. A net's children are
// not entered.
int gx_next_below(const gx_file_gene_recf_t& file, int id, int root);

// Calls visit(id) for every object below the root that a picture shows.
template <typename Visit>
void gx_walk_below(const gx_file_gene_recf_t& file, int root, Visit visit) {
  for (int id = gx_object_id_ptr(file, root).child1; id > 0; id = gx_next_below(file, id, root))
    if (gx_is_drawn(gx_object_id_ptr(file, id).object_type)) visit(id);
}

// The symbol of an instance. A bad instance, symbol or a deleted symbol is traced under the name of
// the operation and stops the program.
int lb_checked_symbol(const gx_file_gene_recf_t& file, int inst, const char* operation);

// Whether the property family `own` (0 for none) holds a property of the name of property `id`.
bool lb_is_overridden(const gx_file_gene_recf_t& file, int id, int own);

// Calls draw_tree(id, selected) for the roots of an instance's picture: its symbol's graphics and
// texts (but for those that the instance has a property of its own for), for every pin that is not
// deleted its property family and itself, and its own properties.
template <typename DrawTree>
void lb_walk_instance(const gx_file_gene_recf_t& file, int inst, const char* operation,
                      DrawTree draw_tree) {
  const int symbol = lb_checked_symbol(file, inst, operation);
  const int properties = lb_inq_inst_child_id(file, inst).bodpropfam;
  const int body = lb_inq_symbol_child_id(file, symbol).body;
  if (body > 0) {
    const bool selected = gx_inq_object_selected(file, inst);
    const auto [graphics, texts] = lb_inq_graphics_property_id(file, body);
    if (graphics > 0) draw_tree(graphics, selected);
    if (texts > 0)
      for (const int id : gx_children(file, texts))
        if (!lb_is_overridden(file, id, properties)) draw_tree(id, selected);
  }
  for (const auto [pin, pinpropfam] : lb_pins(file, inst)) {
    if (gx_inq_object_deleted(file, pinpropfam)) continue;
    const bool selected =
        gx_inq_object_selected(file, pinpropfam) || gx_inq_object_selected(file, pin);
    draw_tree(pinpropfam, selected);
    draw_tree(pin, selected);
  }
  if (properties > 0) draw_tree(properties, false);
}

// Calls draw(id) for every member of a family that is not deleted.
template <typename Draw>
void lb_walk_members(const gx_file_gene_recf_t& file, gx_members members, Draw draw) {
  for (const int id : members)
    if (!gx_inq_object_deleted(file, id)) draw(id);
}
