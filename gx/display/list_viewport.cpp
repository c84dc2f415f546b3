#include "gx/display/list_viewport.h"

#include <algorithm>

#include "gx/display/pen.h"
#include "gx/display/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/message_list.h"
#include "gx/vext.h"

void gx_upd_display_list(bool up, int lines) {
  auto& v = gx_vext;
  if (v.nlinlist_end <= v.nb_line_in_listviewp) return;
  const int last_page = v.nlinlist_end - v.nb_line_in_listviewp + 1;
  v.nlinlist_disp =
      static_cast<std::int16_t>(std::clamp(v.nlinlist_disp + (up ? -lines : lines), 1, last_page));
  gx_regen_display_list();
}

void gx_regen_display_list() {
  const auto& v = gx_vext;
  if (!gx_drawing_possible() || !gx_is_seen() || !gx_viewport_ok(v.viewport_list)) return;
  const gx_batch_t batch;
  const int first = std::max<int>(v.nlinlist_disp, 1);
  const int last =
      std::min({first + v.nb_line_in_listviewp - 1, int{v.nlinlist_end}, gx_max_list_lines});
  for (int line = first; line <= last; ++line) {
    const int y = v.listb_y0 + (line - first) * v.list_step;
    gx_viewport_display_text(v.viewport_list,
                             gx_view(v.line_list[static_cast<std::size_t>(line - 1)]),
                             {v.listb_x0, static_cast<std::int16_t>(y)}, true, v.list_color);
  }
}
