// A GX file under construction: objects added one by one with the editors' bracket and constructors
// (gx/edit), each at the end of its father's children.
#pragma once

#include <memory>
#include <stdexcept>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/edit/hierarchy.h"
#include "gx/text/at.h"
#include "gxmake/builder.h"
#include "gxmake/derived.h"

// Thrown when a file would hold more than gx_max_object_id objects.
struct gxm_too_many_objects : std::length_error {
  gxm_too_many_objects() : std::length_error("more than 30000 objects") {}
};

class gxm_slot;

// The file and the slot it is built in. While a tree lives, the open files and edits of the process
// are set aside; so only the youngest of several trees may be added to.
struct gxm_tree_t {
  std::unique_ptr<gxm_slot> slot;
  std::shared_ptr<gx_file_gene_recf_t> file;

  gxm_tree_t();
  gxm_tree_t(gxm_tree_t&&) noexcept;
  ~gxm_tree_t();
};

// A file with its main object (id 1), page (2) and grid (3).
gxm_tree_t gxm_start_tree(const gx_date_t& date, gx_pointreal_t page, std::int32_t grid_step,
                          bool grid_on);

// A new object, inside the brackets of its father and its own; `fill` calls its constructor.
template <typename Fill>
gx_object_id_t gxm_make(gxm_tree_t& tree, gx_type type, int father, gx_pointreal_t origin,
                        Fill fill) {
  if (tree.file->object_id_max >= gx_max_object_id) throw gxm_too_many_objects();
  const auto slot = tree.file->file_index;
  if (father > 0) gx_object_open(slot, father);
  const auto id = gx_object_create(slot, type, origin.x, origin.y);
  fill();
  gx_object_close(slot, id);
  if (father > 0) gx_object_close(slot, father);
  return id;
}

// A new record of a type with fields of its own.
template <typename Rec>
Rec& gxm_add(gxm_tree_t& tree, int father, gx_pointreal_t origin) {
  const auto id = gxm_make(tree, Rec::type, father, origin, [] {
    if constexpr (Rec::type == gx_type::net) gx_net();
    if constexpr (Rec::type == gx_type::pinpropfam) gx_pinpropfam();
  });
  return reinterpret_cast<Rec&>(*gx_at(tree.file->ptr_to_ar_objindex, id - 1));
}
// A new object of a type without.
gx_object_id_t gxm_add_plain(gxm_tree_t& tree, gx_type type, int father,
                             gx_pointreal_t origin = {});

// The primitives; their boxes are set. A hidden property is at `when_hidden`.
void gxm_add_shape(gxm_tree_t& tree, const gxm_shape_t& shape, int father);
void gxm_add_property(gxm_tree_t& tree, const gxm_property_t& property, int father, bool fixed,
                      int rotate, gx_pointreal_t when_hidden = {});

// The last steps, when all objects are there.
inline void gxm_chain_instances(gxm_tree_t& tree) { gxm_chain_instances(*tree.file); }
inline void gxm_grow_boxes(gxm_tree_t& tree) { gxm_grow_boxes(*tree.file); }
