// A sheet and an edit viewport without a display: what is drawn stays in the pen and is read back.
//
// The viewport covers the pixels 100..900 both ways and shows the design from (0, 0) on at 100
// units a pixel, so that the design point (x, y) lies at pixel (100 + x / 100, 100 + y / 100).
#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "app/sheet/views.h"
#include "gx/db/ids.h"
#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/draw.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/vext.h"
#include "tests/support/make_design.h"
#include "tests/support/objects.h"

class drawing_board {
 public:
  static constexpr gx_vpid_t edit = 1;
  static constexpr gx_file_index_t file_index = 1;

  // The last sheet of a description stands in slot 1; its hidden texts are not drawn.
  explicit drawing_board(std::string_view description = "sheet top\n page 20,20\n")
      : sheet_(build_design(description).back().file) {
    gx_reset_state();
    gx_init_nograph();
    auto& v = gx_vext;
    v.bitmap_size = {1000, 1000};
    v.display_on = true;
    gx_viewport_create({10000, 10000, 90000, 90000}, {1, 0, 3, 0});
    v.viewport_edit = edit;
    v.num_file_open = v.cur_file = sheet_->file_index = file_index;
    v.filear[1].already_open_ok = true;
    v.filear[1].start_buf_ptr = sheet_;
    v.viewport[1].file_index = file_index;
    show(100);
    gx_viewport_select(edit);
    gx_hide_invisible(gx_ptrto_gene_file_buf(file_index));
  }

  // Another scale, from the design's corner on.
  void show(std::int32_t scale) {
    auto& vp = gx_vext.viewport[1];
    vp.object_scale = scale;
    vp.bounds_part = {0, 0, 800 * scale, 800 * scale};
  }

  gx_file_gene_recf_t& file() const { return *sheet_; }
  int id(gx_type type, int n = 1) const { return nth_object(file(), type, n); }
  template <typename Rec>
  Rec& record() const {
    return nth_record<Rec>(file());
  }

 private:
  std::shared_ptr<gx_file_gene_recf_t> sheet_;
};

// The object that words name: "line_2d", "line_2d 2".
inline int object_named(const drawing_board& board, std::istream& words) {
  std::string type;
  int n = 1;
  words >> type;
  if (!(words >> n)) n = 1;
  return board.id(type_named(type), n);
}

// "select instance 2", "hide net", "delete segment"; off: no longer so. Whether the words are such.
inline bool change_object(const drawing_board& board, const std::string& line, bool on = true) {
  std::istringstream words(line);
  std::string action;
  words >> action;
  if (action != "select" && action != "hide" && action != "delete") return false;
  const auto change = action == "select" ? gx_set_object_selected
                      : action == "hide" ? gx_set_object_unvisible
                                         : gx_set_object_deleted;
  change(board.file(), object_named(board, words), on);
  return true;
}

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
