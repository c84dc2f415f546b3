#include "gx/display/input/cmd_viewport.h"

#include <algorithm>

#include "gx/display/input/line_edit.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
constexpr std::string_view prompt = " cmd >";
constexpr std::size_t max_typed_part = 54;  // the characters of a line after the prompt

// A thin upright between two characters.
void draw_caret(int column) {
  const auto& v = gx_vext;
  const int cell = static_cast<int>(prompt.size()) + column - v.istart_cmd;
  if (cell < 0 || cell > gx_cmd_columns) return;
  const gx_point16_t corner = gx_viewport_inq_pixel_min(v.viewport_cmd);
  const auto x =
      static_cast<std::int16_t>(corner.x + v.cmd_x0 + cell * v.cmd_step - v.cmd_step / 4);
  const auto top = static_cast<std::int16_t>(corner.y + v.cmd_y0 - 1);
  const auto bottom = static_cast<std::int16_t>(top + v.cmd_height + 2);
  gx_draw_line(v.viewport_cmd, v.cmd_color, 0, {x, top}, {x, bottom});
}
}  // namespace

void gx_display_cmd(std::string_view text) {
  auto& v = gx_vext;
  if (!gx_drawing_possible() || !gx_viewport_ok(v.viewport_cmd)) return;
  const gx_batch_t batch;
  gx_string_record_t line;
  gx_concat_all(line, prompt, text);
  gx_viewport_display_text(v.viewport_cmd, gx_view(line), {v.cmd_x0, v.cmd_y0}, true, v.cmd_color);
  v.caret_column = gx_caret();
  draw_caret(v.caret_column);
}

void gx_follow_caret() {
  const std::string_view text = gx_view(gx_vext.str_cmd);
  if (!gx_drawing_possible() || !gx_viewport_ok(gx_vext.viewport_cmd)) return;
  if (gx_caret() != gx_vext.caret_column) gx_display_cmd(text);
}

void gx_display_cmd_part(std::string_view text) {
  const auto& v = gx_vext;
  if (!gx_drawing_possible() || !gx_viewport_ok(v.viewport_cmd)) return;
  const auto present = gx_view(v.str_cmd).size();
  if (present + text.size() > max_typed_part) return;
  const int column = std::max(1, static_cast<int>(present + prompt.size() + 1) - v.istart_cmd);
  const gx_point16_t corner = gx_viewport_inq_pixel_min(v.viewport_cmd);
  gx_hortext(v.viewport_cmd, text, 1, corner.x + v.cmd_x0 + column * v.cmd_step,
             corner.y + v.cmd_y0, false, v.cmd_color);
}
