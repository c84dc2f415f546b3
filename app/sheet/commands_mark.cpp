// The marked point and rectangle, and the switches of selecting: MARK, MARK RECTangle, SMAsh,
// SEArch.
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/views.h"
#include "gx/db/place/geometry.h"
#include "gx/display/input/cursor.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

// Where MARK goes: by words `n` (Edit or Context) to n + 2, or under the pointer on the snap grid.
struct mark_t {
  kv_view_t view;
  gx_pointreal_t point;
  bool is_typed = false;
};

std::optional<mark_t> wanted_mark(std::string_view refused, const kv_command_t& command, int n,
                                  int first) {
  const auto view = kv_wanted_view(
      refused, command, n,
      {.bad_word = "# !! Error : Invalid Viewport name (should be Edit/Context) ? "}, first);
  if (!view) return std::nullopt;
  if (command.count() < n) {
    return mark_t{*view, gx_round_snap(gx_vext.obj_pos.x, gx_vext.obj_pos.y)};
  }
  const auto p = kv_typed_point_in_page(command, n + 1, view->file());
  if (p) return mark_t{*view, *p, true};
  kv_refuse(refused, command, kv_outside_page, first);
  return std::nullopt;
}

// The point becomes the object position, and the pointer goes there: what follows in a command file
// finds it in that viewport. A pointer that already drags on is not fetched back.
void move_to(const mark_t& mark) {
  const bool was_there = !mark.is_typed && gx_vext.viewport_id == mark.view.vpid;
  gx_vext.obj_pos = mark.point;
  gx_vext.viewport_id = mark.view.vpid;
  if (!gx_viewport_ok(mark.view.vpid)) return;
  const gx_point16_t from = gx_vext.pixel_pos;
  gx_vext.pixel_pos = gx_viewport_pt_real_to_pixel(mark.view.vpid, mark.point);
  if (was_there)
    gx_cursor_set_position(gx_vext.pixel_pos, from);
  else
    gx_cursor_set_position(gx_vext.pixel_pos);
}

// MARK, MARK Edit x y; a word before Edit is passed over, as MARK RECTangle has one there.
void kv_mark_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# MARK ";
  const int n = command.count() == 4 ? 2 : 3;
  const auto mark = wanted_mark(refused, command, n, 2);
  if (!mark) return;
  move_to(*mark);
  kv_update_basept_edit_cmd();
  gx_tell(" MARK", mark->view.name(), gx_view(kv_point_text(mark->point)));
}

void kv_mark_rectangle_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# MARK RECTangle ";
  const auto mark = wanted_mark(refused, command, 3, 3);
  if (!mark) return;
  const gx_point16_t pointer = gx_vext.pixel_pos;
  move_to(*mark);
  gx_vext.pixel_mark = command.count() == 2 ? pointer : gx_vext.pixel_pos;
  kv_pext.mark_rect_done = true;
  kv_pext.obj_ptr1 = gx_vext.obj_pos;
  gx_vext.viewport_id_start = mark->view.vpid;
  gx_vext.pixel_ptr1 = gx_vext.pixel_pos;
  gx_tell(" MARK RECtangle", mark->view.name(), gx_view(kv_point_text(mark->point)));
}

void kv_smash_cmd(const kv_command_t& command) {
  const auto on = kv_on_or_off(command.word(2));
  if (!on) return kv_refuse("# SMASh ", command, kv_bad_second);
  kv_pext.smash_done = *on;
  gx_tell(*on ? " SMAsh ON " : " SMAsh OFF ");
}

void kv_search_cmd(const kv_command_t& command) {
  kv_pext.search_done = command.word(2) != "/";
  kv_pext.search_path =
      gx_string(kv_pext.search_done ? kv_file_name(command.word(2)) : std::string_view{});
  kv_echo(" SEArch ", command);
}

constexpr kv_command_row_t mark_rows[] = {
    // clang-format off
    {{"MARK", "RECT"}, "MARK RECTangle [Edit x y]", kv_mark_rectangle_cmd, "# MARK RECTangle ", 3, 4},
    {{"MARK"}, "MARK [Edit x y]", kv_mark_cmd, "# MARK ", 2, 4, kv_counts_of("MARK [word] [Edit x y]")},
    {{"SMA", "O"}, "SMAsh ON or OFF", kv_smash_cmd, "# SMAsh "},
    {{"SEA"}, "SEArch path", kv_search_cmd, "# SEArch "},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_mark_commands() { return mark_rows; }
