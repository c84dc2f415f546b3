// A GX file under construction: objects added one by one, linked to father and siblings.
#pragma once

#include <memory>
#include <stdexcept>
#include <vector>

#include "gx/db/file_records.h"
#include "gx/db/ids.h"
#include "gxmake/builder.h"

// Thrown when a file would hold more than gx_max_object_id objects.
struct gxm_too_many_objects : std::length_error {
  gxm_too_many_objects() : std::length_error("more than 30000 objects") {}
};

struct gxm_tree_t {
  std::shared_ptr<gx_file_gene_recf_t> file;
  std::vector<gx_object_id_t> last_child;  // entry i is of object i; 0 is the level of the root
};

// A file with its main object (id 1), page (2) and grid (3).
gxm_tree_t gxm_start_tree(const gxm_date_t& date, gx_pointreal_t page, std::int32_t grid_step,
                          bool grid_on);

// Gives the record the next id and appends it to its father's children.
gx_object_id_t gxm_link(gxm_tree_t& tree, gx_object_gene_rec_t& object, int father,
                        gx_pointreal_t origin);

// A new record of a type with fields of its own.
template <typename Rec>
Rec& gxm_add(gxm_tree_t& tree, int father, gx_pointreal_t origin) {
  auto& record = gx_new_record<Rec>(*tree.file);
  record.gene.object_type = Rec::type;
  gxm_link(tree, record.gene, father, origin);
  return record;
}
// A new object of a type without.
gx_object_id_t gxm_add_plain(gxm_tree_t& tree, gx_type type, int father,
                             gx_pointreal_t origin = {});

// The primitives; their boxes are set. A hidden property stands at `when_hidden`.
void gxm_add_shape(gxm_tree_t& tree, const gxm_shape_t& shape, int father);
void gxm_add_property(gxm_tree_t& tree, const gxm_property_t& property, int father, bool fixed,
                      int rotate, gx_pointreal_t when_hidden = {});

// Gives every container the box that holds its children. What an instance covers is its symbol
// and its pins, not the texts beside it.
void gxm_grow_boxes(gxm_tree_t& tree);
