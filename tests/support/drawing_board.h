// A sheet and an edit viewport without a display: what is drawn stays in the pen and is read back.
//
// The viewport covers the pixels 100..900 both ways and shows the design from (0, 0) on at 100
// units a pixel, so that the design point (x, y) lies at pixel (100 + x / 100, 100 + y / 100).
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "gx/db/ids.h"
#include "gx/db/object_access.h"
#include "gx/display/draw.h"
#include "gx/display/pen.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/vext.h"
#include "gxmake/object_tree.h"

class drawing_board {
 public:
  static constexpr gx_vpid_t edit = 1;
  static constexpr gx_file_index_t file_index = 1;

  drawing_board() {
    auto& v = gx_vext;
    v.bitmap_size = {1000, 1000};
    v.display_on = true;
    gx_viewport_create({10000, 10000, 90000, 90000}, {1, 0, 3, 0});
    v.viewport_edit = edit;
    v.filear[1].already_open_ok = true;
    v.viewport[1].file_index = file_index;
    show(100);
    gx_viewport_select(edit);
  }

  // Another scale, from the design's corner on.
  void show(std::int32_t scale) {
    auto& vp = gx_vext.viewport[1];
    vp.object_scale = scale;
    vp.bounds_part = {0, 0, 800 * scale, 800 * scale};
  }

  const gx_file_gene_recf_t& file() const { return *tree.file; }
  int family(gx_type type) { return gxm_add_plain(tree, type, tree.file->primary_object); }

  // A primitive of that type under the father, its box set.
  template <typename Rec>
  Rec& add(gx_pointreal_t at, gx_boundsreal_t box, int father) {
    Rec& record = gxm_add<Rec>(tree, father, at);
    record.gene.bounds = box;
    return record;
  }
  void select(int id) { gx_object_id_ptr(file(), id).status |= gx_flag_selected; }

  gxm_tree_t tree = blank_sheet();  // in slot 1 while it lives

 private:
  static gxm_tree_t blank_sheet() {
    gx_reset_state();
    gx_init_nograph();
    return gxm_start_tree({}, {100000, 100000}, 5000, true);
  }
};

// Calls see(group) for what one drawing left in the pen, layer by layer.
template <typename See>
void see_strokes(const std::function<void()>& draw, See see) {
  const gx_batch_t batch;
  gx_pen_flush();
  draw();
  gx_pen_kept().visit(see);
}

inline std::vector<gx_line16_t> lines_of(int color, int style, const std::function<void()>& draw) {
  std::vector<gx_line16_t> lines;
  see_strokes(draw, [&](const gx_stroke_group_t& group) {
    if (group.color == color && group.dashes == style)
      lines.insert(lines.end(), group.lines.begin(), group.lines.end());
  });
  return lines;
}
