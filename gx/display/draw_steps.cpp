
#include "gx/display/draw_steps.h"

#include <algorithm>
#include <cstdlib>

#include "gx/db/object_access.h"
#include "gx/display/clipping.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

gx_picture_t gx_picture_of(gx_vpid_t vpid, gx_file_index_t file_index, int object_id,
                           gx_draw_mode mode, const char* operation) {
  if (!gx_viewport_ok(vpid) || vpid != gx_vext.viewport_current) {
    gx_debug(" %s : view port invalid : %d  file_index : %d   obj_id : %d\n", operation, vpid,
             file_index, object_id);
    gx_set_status(gx_code::viewport_id_invalid);
  }
  return {vpid, file_index, &gx_ptrto_gene_file_buf(file_index), mode};
}

int gx_drawn_color(const gx_picture_t& picture, int own, bool selected) {
  if (picture.erases()) return gx_viewport_rec(picture.vpid).border.background_color;
  return selected ? gx_vext.color_obj_selected : own;
}

void gx_draw_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b) {
  gx_line16_t line{a.x, a.y, b.x, b.y};
  if (gx_line_clipping(vpid, line)) gx_pen_line(color, style, line);
}

void gx_draw_polyline(gx_vpid_t vpid, int color, int style, std::span<const gx_point16_t> points) {
  for (std::size_t i = 1; i < points.size(); ++i)
    gx_draw_line(vpid, color, style, points[i - 1], points[i]);
}

void gx_draw_thick_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b,
                        int width) {
  gx_line16_t line{a.x, a.y, b.x, b.y};
  if (!gx_line_clipping(vpid, line)) return;
  const int dx = std::abs(line.x2 - line.x1), dy = std::abs(line.y2 - line.y1);
  const int larger = std::max({dx, dy, 1}), smaller = std::min(dx, dy);
  // Slanted thin lines lie nearer to each other than their offsets.
  const int lines = width == 1 ? 1 : width + smaller * width * 4 / (larger * 10);
  if (lines < 2) {
    gx_pen_line(color, style, line);
    return;
  }
  const bool flat = dx > dy;
  for (int k = 1; k <= lines; ++k) {
    const int offset = k - (lines / 2 - 1);
    gx_line16_t thin = line;
    for (auto* across : flat ? std::array{&thin.y1, &thin.y2} : std::array{&thin.x1, &thin.x2})
      *across = static_cast<std::int16_t>(*across + offset);
    gx_pen_line(color, style, thin);
  }
}
