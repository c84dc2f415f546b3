#include "gx/display/input/line_edit.h"

#include <algorithm>
#include <string>

#include "gx/display/input/cursor.h"
#include "gx/display/list_viewport.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

constexpr int prompt_length = 6;  // of " cmd >"

bool is_under_pointer() { return gx_vext.viewport_id == gx_vext.viewport_cmd; }

int cmd_step() { return std::max<int>(gx_vext.cmd_step, 1); }

void delete_character(int column) {
  std::string text(gx_view(gx_vext.str_cmd));
  column = std::clamp(column, 1, std::max(1, static_cast<int>(text.size())));
  if (text.size() < 2) {
    text.clear();
  } else {
    text.erase(static_cast<std::size_t>(column - 1), 1);
  }
  gx_set_command_line(text);
  gx_cursor_set_position(gx_cmd_column_pixel(column));
}

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

void gx_set_command_line(std::string_view text) {
  auto& v = gx_vext;
  v.str_cmd = gx_string(text);
  v.caret_at = 0;
  if (!is_under_pointer()) {
    const int past = prompt_length + v.str_cmd.len + 2 - gx_cmd_columns;  // the caret is shown, too
    v.istart_cmd = static_cast<std::int16_t>(std::max(past, 1));
  }
  gx_display_cmd(gx_view(v.str_cmd));
}

void gx_set_command_line(std::string_view text, int caret) {
  auto& v = gx_vext;
  const int end = static_cast<int>(text.size()) + 1;
  v.str_cmd = gx_string(text);
  v.caret_at = caret < 1 || caret >= end ? 0 : caret;
  const int column = v.caret_at == 0 ? end : v.caret_at;
  if (!is_under_pointer()) {
    const int first_seen = prompt_length + column + 1 - gx_cmd_columns;
    v.istart_cmd = static_cast<std::int16_t>(std::max(first_seen, 1));
    return gx_display_cmd(gx_view(v.str_cmd));
  }
  v.pixel_pos = gx_cmd_column_pixel(column);
  gx_display_cmd(gx_view(v.str_cmd));
  gx_cursor_set_position(v.pixel_pos);
}

int gx_caret() {
  const auto& v = gx_vext;
  const int end = v.str_cmd.len + 1;
  if (is_under_pointer()) return std::clamp(gx_cmd_column(v.pixel_pos), 1, end);
  return v.caret_at == 0 ? end : std::min(v.caret_at, end);
}

void gx_insert_text(std::string_view text) {
  const int caret = gx_caret();
  std::string line(gx_view(gx_vext.str_cmd));
  line.insert(static_cast<std::size_t>(caret - 1), text);
  gx_set_command_line(line, caret + static_cast<int>(text.size()));
}

void gx_cut_line(gx_cut what) {
  const std::string_view line = gx_view(gx_vext.str_cmd);
  const auto caret = static_cast<std::size_t>(gx_caret() - 1);
  std::string before(line.substr(0, caret)), behind(line.substr(caret));
  if (what == gx_cut::behind) {
    behind.clear();
  } else if (what == gx_cut::before) {
    before.clear();
  } else {
    const std::size_t last = before.find_last_not_of(' ');
    const std::size_t blank = last == std::string::npos ? last : before.find_last_of(' ', last);
    before.resize(blank == std::string::npos ? 0 : blank + 1);
  }
  gx_set_command_line(before + behind, static_cast<int>(before.size()) + 1);
}

int gx_cmd_column(gx_point16_t pixel) {
  const gx_point16_t corner = gx_viewport_inq_pixel_min(gx_vext.viewport_cmd);
  const int x = pixel.x - corner.x - gx_vext.cmd_x0 - 5;
  return x / cmd_step() + gx_vext.istart_cmd - (prompt_length - 1);
}

gx_point16_t gx_cmd_column_pixel(int column) {
  const gx_bounds16_t& box = gx_viewport_rec(gx_vext.viewport_cmd).pixel_bounds;
  const int step = column - gx_vext.istart_cmd + prompt_length - 1;
  const int x = box.xmin + gx_vext.cmd_x0 + 5 + step * cmd_step() + cmd_step() / 2;
  return {static_cast<std::int16_t>(std::clamp<int>(x, box.xmin + 1, box.xmax - 1)),
          static_cast<std::int16_t>((box.ymin + box.ymax) / 2)};
}

void gx_pixel_pos_action() {
  gx_display_list(" pixel_pos " + std::to_string(gx_vext.pixel_pos.x) + " " +
                  std::to_string(gx_vext.pixel_pos.y));
}

void gx_again_action(gx_vpid_t vpid, gx_point16_t pixel) {
  if (vpid != gx_vext.viewport_list || !gx_viewport_ok(vpid)) return;
  const gx_point16_t corner = gx_viewport_inq_pixel_min(vpid);
  const int line = gx_list_line_at(pixel);
  const int under = (pixel.x - corner.x - gx_vext.listb_x0 + 6) / std::max(gx_list_step(), 1) +
                    gx_vext.istart_list;
  const int column = std::clamp(under, 1, gx_vext.istart_list + gx_cmd_columns - 1);
  const std::string_view text = gx_view(gx_at(gx_vext.line_list, line - 1));
  if (static_cast<std::size_t>(column) <= text.size()) {
    gx_concat_const(text.substr(static_cast<std::size_t>(column - 1)), gx_vext.str_cmd);
  }
  gx_display_cmd(gx_view(gx_vext.str_cmd));
  gx_cursor_set_position(pixel);
}

void gx_backsp_action(gx_vpid_t vpid, gx_point16_t pixel) {
  if (vpid == gx_vext.viewport_cmd && gx_viewport_ok(vpid)) {
    delete_character(gx_cmd_column(pixel) - 1);
  }
}

void gx_chardel_action(gx_vpid_t vpid, gx_point16_t pixel) {
  if (vpid == gx_vext.viewport_cmd && gx_viewport_ok(vpid)) delete_character(gx_cmd_column(pixel));
}

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
