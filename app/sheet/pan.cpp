#include "app/sheet/pan.h"

#include <algorithm>
#include <array>

#include "app/language/command_row.h"
#include "app/sheet/views.h"
#include "app/state.h"
#include "gx/db/place/geometry.h"
#include "gx/display/input/cursor.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/list_viewport.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/grid.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {
// The roles of the viewports by their fixed ids.
constexpr gx_vpid_t edit = 1, cmd = 2, list = 3, context = 4;

constexpr std::int32_t one_step = 5000;
constexpr std::int16_t max_start = 140;  // of the first character shown
constexpr int edge_room = 5;             // pixels the pointer keeps from a viewport's edge

// A picture that goes up shows what lies below: panning adds to the coordinates shown.
constexpr std::array<kv_move_t, 20> moves = {{
    {"$CU1", 0, -1, one_step, true},     {"$CD1", 0, 1, one_step, true},
    {"$CL1", -1, 0, one_step, true},     {"$CR1", 1, 0, one_step, true},
    {"$CU4", 0, -1, 4 * one_step, true}, {"$CD4", 0, 1, 4 * one_step, true},
    {"$CL4", -1, 0, 4 * one_step, true}, {"$CR4", 1, 0, 4 * one_step, true},
    {"$VPTU5", 0, 1, 5 * one_step},      {"$VPTD5", 0, -1, 5 * one_step},
    {"$VPTL5", 1, 0, 5 * one_step},      {"$VPTR5", -1, 0, 5 * one_step},
    {"$VPTU20", 0, 1, 20 * one_step},    {"$VPTD20", 0, -1, 20 * one_step},
    {"$VPTL20", 1, 0, 20 * one_step},    {"$VPTR20", -1, 0, 20 * one_step},
    {"$VPTU80", 0, 1, 80 * one_step},    {"$VPTD80", 0, -1, 80 * one_step},
    {"$VPTL80", 1, 0, 80 * one_step},    {"$VPTR80", -1, 0, 80 * one_step},
}};
constexpr std::size_t looked_at = 6;  // characters of a word

bool is_picture(gx_vpid_t vpid) { return vpid == edit || vpid == context; }

std::int32_t moved(std::int32_t from, int sign, std::int32_t amount) {
  return gx_saturated(from + std::int64_t{sign} * amount);
}

void update(gx_vpid_t vpid) {
  if (vpid == edit)
    kv_update_viewport_edit();
  else
    kv_update_viewport_context();
}

void pan(const kv_move_t& move) {
  auto& v = gx_vext;
  if (!is_picture(v.viewport_id) || !gx_viewport_ok(v.viewport_id)) return;
  if (v.viewport_id == edit) kv_remember_view();
  v.obj_pos = {moved(v.obj_pos.x, move.dx, move.amount), moved(v.obj_pos.y, move.dy, move.amount)};
  gx_viewport_translate(v.viewport_id, move.dy, move.dx, move.amount);
  update(v.viewport_id);
}

// What a wheel or a drag changes: there is a picture, and somebody sees it.
bool is_shown(gx_vpid_t vpid) {
  return is_picture(vpid) && gx_viewport_ok(vpid) && gx_vext.display_on &&
         gx_viewport_rec(vpid).file_index > 0;
}

void show_moved(gx_vpid_t vpid) {
  gx_rectangle_erase();
  gx_set_grid_visibility(gx_viewport_rec(vpid).file_index, vpid);
  update(vpid);
}

// Scrolls a text sideways: to the left shows what follows its end.
bool scroll_text(std::int16_t& first_shown, int dx) {
  const int next = first_shown - dx;
  if (next < 1 || next > max_start) return false;
  first_shown = static_cast<std::int16_t>(next);
  return true;
}

void recall_line() {
  auto& v = gx_vext;
  if (v.nlinlist_end + kv_pext.line_position > 1) --kv_pext.line_position;
  const int line = v.nlinlist_end + kv_pext.line_position - 1;
  if (line < 1 || line > gx_max_list_lines) return;
  v.str_cmd = gx_at(v.line_list, line - 1);
  gx_display_cmd(gx_view(v.str_cmd));
}

void move_along_text(const gx_bounds16_t& box, int dx) {
  auto& v = gx_vext;
  const int x = v.pixel_pos.x + dx * v.cmd_step;
  if (x <= box.xmin + edge_room || x >= box.xmax - edge_room) return;
  v.pixel_pos.x = static_cast<std::int16_t>(x);
  gx_cursor_set_position(v.pixel_pos);
}

void move_in_text(const kv_move_t& move, const gx_bounds16_t& box) {
  auto& v = gx_vext;
  const bool is_list = v.viewport_id == list;
  if (move.dx != 0 && move.amount == one_step) {
    move_along_text(box, move.dx);
  } else if (move.dx != 0) {
    if (!scroll_text(is_list ? v.istart_list : v.istart_cmd, move.dx)) return;
    if (is_list)
      gx_regen_display_list();
    else
      gx_display_cmd(gx_view(v.str_cmd));
  } else if (is_list) {
    gx_upd_display_list(move.dy < 0);
  } else if (move.dy < 0 && move.amount == one_step) {
    recall_line();
  }
}

void move_in_picture(const kv_move_t& move, const gx_bounds16_t& box) {
  auto& v = gx_vext;
  const gx_pointreal_t from = gx_round_snap(v.obj_pos.x, v.obj_pos.y);
  const gx_pointreal_t to = {moved(from.x, move.dx, move.amount),
                             moved(from.y, move.dy, move.amount)};
  const gx_point16_t pixel = gx_viewport_pt_real_to_pixel(v.viewport_id, to);
  if (pixel.x > box.xmin + edge_room && pixel.x < box.xmax - edge_room &&
      pixel.y > box.ymin + edge_room && pixel.y < box.ymax - edge_room) {
    v.obj_pos = to;
    v.pixel_pos = pixel;
  }
  gx_cursor_set_position(v.pixel_pos);
}
}  // namespace

const kv_move_t* kv_find_move(std::string_view word) {
  for (const kv_move_t& move : moves)
    if (word.size() == move.word.size() &&
        gx_iden(word.substr(0, looked_at), move.word.substr(0, looked_at)))
      return &move;
  return nullptr;
}

void kv_zoom_at(gx_vpid_t vpid, gx_point16_t pixel, int num, int den) {
  if (is_shown(vpid) && gx_viewport_zoom_at(vpid, pixel, num, den)) show_moved(vpid);
}

void kv_pan_by(gx_vpid_t vpid, int dx, int dy) {
  if (!is_shown(vpid)) return;
  gx_viewport_pan(vpid, dx, dy);
  show_moved(vpid);
}

void kv_make_move(const kv_move_t& move) {
  if (!move.is_cursor) {
    pan(move);
    return;
  }
  const gx_vpid_t vpid = gx_vext.viewport_id;
  if (!gx_viewport_ok(vpid)) return;
  const gx_bounds16_t& box = gx_viewport_rec(vpid).pixel_bounds;
  if (is_picture(vpid))
    move_in_picture(move, box);
  else if (vpid == list || vpid == cmd)
    move_in_text(move, box);
}

namespace {
// A word that names no move is an unknown command.
kv_outcome_t kv_move(const kv_command_t& command) {
  const kv_move_t* move = kv_find_move(command.word(1));
  if (move == nullptr) return {.unknown = true};
  kv_make_move(*move);
  return {};
}

// The number of a word within the limits; nothing when it is none.
std::optional<int> number_of(std::string_view word, int least, int most) {
  const auto number = gx_whole_number<int>(word);
  return number && *number >= least && *number <= most ? number : std::nullopt;
}

// Turns of the wheel that follow one another are one view for VIEw LASt.
void remember_before_turn() {
  if (gx_vext.viewport_id == edit && !kv_pext.hands.turns_wheel) kv_remember_view();
}

void kv_zoom_cmd(const kv_command_t& command) {
  constexpr int most = 100;
  const auto num = number_of(command.word(2), 1, most), den = number_of(command.word(3), 1, most);
  if (!num || !den) return kv_refuse("# $ZOOM ", command, kv_bad_second);
  remember_before_turn();
  kv_zoom_at(gx_vext.viewport_id, gx_vext.pixel_pos, *den, *num);
}

void kv_slide_cmd(const kv_command_t& command) {
  const auto percent = number_of(command.word(2), -100, 100);
  if (!percent) return kv_refuse("# $SLIDE ", command, kv_bad_second);
  if (!is_shown(gx_vext.viewport_id)) return;
  remember_before_turn();
  const gx_bounds16_t& box = gx_viewport_rec(gx_vext.viewport_id).pixel_bounds;
  kv_pan_by(gx_vext.viewport_id, -(box.xmax - box.xmin) * *percent / 100, 0);
}

constexpr kv_command_row_t move_rows[] = {
    {{"$ZOOM"}, "$ZOOM n d", kv_zoom_cmd, "# $ZOOM "},
    {{"$SLIDE"}, "$SLIDE percent", kv_slide_cmd, "# $SLIDE "},
    {.keywords = {"$C"},
     .syntax = "$CU1, $CD1, $CL1, $CR1 and with 4",
     .exact = 4,
     .deciding = kv_move},
    {.keywords = {"$VPT"},
     .syntax = "$VPTU5, $VPTD5, $VPTL5, $VPTR5 and with 20 and 80",
     .deciding = kv_move},
};
}  // namespace

kv_command_rows_t kv_move_commands() { return move_rows; }
