#include "gx/display/cmd_viewport.h"

#include <algorithm>

#include "gx/display/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
constexpr std::string_view prompt = " cmd >";
constexpr std::size_t max_typed_part = 54;  // the characters of a line behind the prompt
}  // namespace

void gx_display_cmd(std::string_view text) {
  const auto& v = gx_vext;
  if (!gx_drawing_possible() || !gx_viewport_ok(v.viewport_cmd)) return;
  gx_string_record_t line;
  gx_concat_all(line, prompt, text);
  gx_viewport_display_text(v.viewport_cmd, gx_view(line), {v.cmd_x0, v.cmd_y0}, true, v.cmd_color);
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
