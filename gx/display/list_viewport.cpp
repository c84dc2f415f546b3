#include "gx/display/list_viewport.h"

#include <algorithm>

#include "gx/display/pen.h"
#include "gx/display/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
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
    gx_viewport_display_text(v.viewport_list, gx_view(gx_at(v.line_list, line - 1)),
                             {v.listb_x0, static_cast<std::int16_t>(y)}, true, v.list_color);
  }
}

std::string_view gx_list_word_at(gx_point16_t pixel) {
  const auto& v = gx_vext;
  if (!gx_viewport_ok(v.viewport_list) || v.list_step < 1 || v.cmd_step < 1) return {};
  const gx_point16_t corner = gx_viewport_inq_pixel_min(v.viewport_list);
  const int row = (pixel.y - corner.y - v.listb_y0) / v.list_step;
  const int column = (pixel.x - corner.x - v.listb_x0) / v.cmd_step;
  const int line = std::max<int>(v.nlinlist_disp, 1) + row;
  if (row < 0 || row >= v.nb_line_in_listviewp || column < 0 || line > v.nlinlist_end ||
      line > gx_max_list_lines) {
    return {};
  }
  constexpr std::string_view between = " \"'";
  const std::string_view text = gx_view(gx_at(v.line_list, line - 1)).substr(0, gx_max_text_length);
  const auto at = static_cast<std::size_t>(column);
  if (at >= text.size() || between.find(text[at]) != between.npos) return {};
  const auto before = text.find_last_of(between, at);
  const std::size_t begin = before == text.npos ? 0 : before + 1;
  return text.substr(begin, text.find_first_of(between, at) - begin);
}
