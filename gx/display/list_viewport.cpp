#include "gx/display/list_viewport.h"

#include <algorithm>

#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/kept_text.h"
#include "gx/text/messages/message_list.h"
#include "gx/vext.h"

namespace {
// In a theme with colours of its own: errors, warnings, echoes of commands and what they answer.
int color_of(int line) {
  constexpr int red = 1, cyan = 4, yellow = 5;
  const auto& v = gx_vext;
  if (!gx_theme().has_roles) return v.list_color;
  const gx_line_kind kind = gx_at(v.line_kind, line - 1);
  if (kind == gx_line_kind::error) return red;
  if (kind == gx_line_kind::warning) return yellow;
  const bool is_echo = gx_view(gx_at(v.line_list, line - 1)).starts_with(' ');
  return is_echo ? cyan : v.list_color;
}
}  // namespace

int gx_list_step() {
  return gx_list_is_plain() ? gx_vext.cmd_step : std::max(gx_vext.list_height * 6 / 5, 1);
}

void gx_upd_display_list(bool up, int lines) {
  auto& v = gx_vext;
  if (v.nlinlist_end <= v.nb_line_in_listviewp) return;
  const int last_page = v.nlinlist_end - v.nb_line_in_listviewp + 1;
  v.nlinlist_disp =
      static_cast<std::int16_t>(std::clamp(v.nlinlist_disp + (up ? -lines : lines), 1, last_page));
  gx_regen_display_list();
}

int gx_list_line_at(gx_point16_t pixel) {
  const auto& v = gx_vext;
  const gx_point16_t corner = gx_viewport_inq_pixel_min(v.viewport_list);
  const int row = (pixel.y - corner.y - v.listb_y0) / std::max<int>(v.list_step, 1) + 1;
  int line = std::clamp(row, 1, std::max<int>(v.nb_line_in_listviewp, 1));
  if (v.nlinlist_disp > 1) line += v.nlinlist_disp - 1;
  return std::clamp(line, 1, gx_max_list_lines);
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
    gx_viewport_display_text(v.viewport_list, gx_shown_text(gx_view(gx_at(v.line_list, line - 1))),
                             {v.listb_x0, static_cast<std::int16_t>(y)}, true, color_of(line));
  }
}

std::string_view gx_list_word_at(gx_point16_t pixel) {
  const auto& v = gx_vext;
  if (!gx_viewport_ok(v.viewport_list) || v.list_step < 1 || gx_list_step() < 1) return {};
  const gx_point16_t corner = gx_viewport_inq_pixel_min(v.viewport_list);
  const int down = pixel.y - corner.y - v.listb_y0, right = pixel.x - corner.x - v.listb_x0;
  if (down < 0 || right < 0) return {};
  const int row = down / v.list_step, column = right / gx_list_step();
  const int line = std::max<int>(v.nlinlist_disp, 1) + row;
  if (row >= v.nb_line_in_listviewp || line > v.nlinlist_end || line > gx_max_list_lines) return {};
  constexpr std::string_view between = " \"'";
  const std::string_view whole = gx_view(gx_at(v.line_list, line - 1));
  const auto place = [whole](int shown) {
    return gx_kept_place(whole, static_cast<std::size_t>(shown));
  };
  const auto text = whole.substr(0, place(gx_list_width()));
  const auto at = place(column);
  if (at >= text.size() || between.find(text[at]) != between.npos) return {};
  const auto before = text.find_last_of(between, at);
  const std::size_t begin = before == text.npos ? 0 : before + 1;
  return text.substr(begin, text.find_first_of(between, at) - begin);
}
