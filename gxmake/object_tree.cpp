#include "gxmake/object_tree.h"

#include <algorithm>
#include <utility>

#include "gx/db/file/file_slots.h"
#include "gx/db/file/file_state.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/undo.h"
#include "gx/edit/edit_state.h"
#include "gx/edit/primitives.h"

namespace {

constexpr std::int32_t dot_half_size = 1000;

}  // namespace

// Slot 1 of a file table of its own, with an empty file.
class gxm_slot {
 public:
  gxm_slot()
      : files_(std::exchange(gx_files, {})),
        undo_(std::exchange(gx_undo, {})),
        edit_(std::exchange(gx_edit, {})) {
    gx_files.num_file_open = gx_files.cur_file = 1;
    gx_file_create_new(1);
    file = gx_files.filear[1].start_buf_ptr;
  }
  ~gxm_slot() {
    file->file_index = 0;  // it lives on outside the slots
    gx_files = std::move(files_);
    gx_undo = std::move(undo_);
    gx_edit = std::move(edit_);
  }
  gxm_slot(const gxm_slot&) = delete;
  gxm_slot& operator=(const gxm_slot&) = delete;

  std::shared_ptr<gx_file_gene_recf_t> file;

 private:
  gx_file_state_t files_;
  gx_undo_state_t undo_;
  gx_edit_state_t edit_;
};

gxm_tree_t::gxm_tree_t() : slot(std::make_unique<gxm_slot>()), file(slot->file) {}
gxm_tree_t::gxm_tree_t(gxm_tree_t&&) noexcept = default;
gxm_tree_t::~gxm_tree_t() = default;

gx_object_id_t gxm_add_plain(gxm_tree_t& tree, gx_type type, int father, gx_pointreal_t origin) {
  return gxm_make(tree, type, father, origin, [type] { gx_plain(type); });
}

gxm_tree_t gxm_start_tree(const gx_date_t& date, gx_pointreal_t page, std::int32_t grid_step,
                          bool grid_on) {
  gxm_tree_t tree;
  auto& file = *tree.file;
  gx_set_file_date(file, date);
  file.dot_width = dot_half_size;
  const auto main = gxm_add_plain(tree, gx_type::main, 0);
  const auto page_id = gxm_add_plain(tree, gx_type::page, main);
  gxm_make(tree, gx_type::grid_2d, page_id, {},
           [&] { gx_grid_real({}, page, grid_step, grid_step, grid_on, true); });
  return tree;
}

void gxm_add_shape(gxm_tree_t& tree, const gxm_shape_t& shape, int father) {
  const auto& p = shape.points;
  const auto id = gxm_make(tree, shape.type, father, {}, [&] {
    const std::uint8_t fill_color = shape.filled ? shape.color : std::uint8_t{0};
    switch (shape.type) {
      case gx_type::rectangle_2d:
        return gx_rectangle_2dreal(shape.style, shape.color, p[0], p[1], shape.filled, fill_color);
      case gx_type::circle_2d:
        return gx_circle_real(shape.style, shape.color, shape.filled, p[0], shape.radius);
      case gx_type::arc3p_2d:
        return gx_arc3p_2dreal(p[0], p[1], p[2], shape.style, shape.color);
      case gx_type::polyline_2d:
        return gx_polyline_2dreal(shape.style, shape.color, p);
      default:
        return gx_line_2dreal(shape.style, shape.color, shape.width, p[0], p[1]);
    }
  });
  // An empty circle names no colour to fill it with.
  if (shape.type == gx_type::circle_2d && !shape.filled) {
    gx_circle_info_ptr(*tree.file, id).fill_color = 0;
  }
}

void gxm_add_property(gxm_tree_t& tree, const gxm_property_t& property, int father, bool fixed,
                      int rotate, gx_pointreal_t when_hidden) {
  const gx_property_look_t look{.height = property.height,
                                .rotate = rotate,
                                .color = property.color,
                                .fixed = fixed,
                                .visible = property.at.has_value()};
  gxm_make(tree, gx_type::property_2d, father, {}, [&] {
    gx_property_2dreal(property.name, property.value, property.at.value_or(when_hidden), look);
  });
}
