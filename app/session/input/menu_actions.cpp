#include "app/session/input/menu_actions.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "app/language/interpreter.h"
#include "app/state.h"
#include "gx/display/input/menu_draw.h"
#include "gx/display/input/menu_state.h"
#include "gx/display/input/menu_tree.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

void check_level(const char* operation) {
  if (gx_vext.menu_level >= 1 && gx_vext.menu_level <= gx_max_menu_levels) return;
  gx_debug("%s : menu level not ok = %d\n", operation, gx_vext.menu_level);
  gx_set_status(gx_code::input_event_type_invalid);
}

void clear_lines_from(int level) {
  const auto first = level - 1;
  std::fill(gx_vext.menuline_lev.begin() + first, gx_vext.menuline_lev.end(), 0);
  std::fill(gx_vext.prelinsel_lev.begin() + first, gx_vext.prelinsel_lev.end(), 0);
}

gx_menu_rec_t chosen_record() {
  const auto level = static_cast<std::size_t>(gx_vext.menu_level);
  const auto lines = std::span(gx_vext.menuline_lev).first(level);
  const bool all_chosen =
      std::ranges::all_of(lines, [](int line) { return line >= 1 && line <= gx_max_menu_lines; });
  return all_chosen ? gx_get_menu_rec(lines) : gx_menu_rec_t{};
}

}  // namespace

void kv_locator_in_menu() {
  check_level("gx_locator_in_menu");
  gx_select_line_menu(gx_vext.viewport_edit, gx_vext.menu_level);
}

void kv_locator_out_menu() {
  check_level("gx_locator_out_menu");
  const int level = gx_vext.menu_level;
  gx_restore_menu(gx_vext.viewport_edit, level);
  clear_lines_from(level);
}

void kv_locator_in_boxmen() {
  check_level("gx_locator_in_boxmen");
  const int level = gx_vext.menu_level;
  if (level == gx_max_menu_levels) return;
  const gx_menu_rec_t record = chosen_record();
  if (!record.cmd_on && record.str.len > 0) gx_draw_menu(gx_vext.viewport_edit, level + 1);
}

void kv_show_menu_to_click() {
  gx_draw_menu1(gx_vext.viewport_edit, kv_menu_position);
  kv_pext.hands.menu_waits = gx_vext.menu_drawn;
}

bool kv_open_chosen_menu() {
  const gx_menu_rec_t record = chosen_record();
  if (record.str.len < 1 || record.cmd_on) return false;
  kv_locator_in_boxmen();
  return true;
}

void kv_close_menu() {
  gx_close_menus(gx_vext.viewport_edit);
  clear_lines_from(1);
  kv_pext.hands.menu_waits = false;
}

void kv_execute_item_menu() {
  if (!gx_vext.menu_drawn) return;
  const gx_menu_rec_t record = chosen_record();
  kv_close_menu();
  if (!record.cmd_on || record.str.len < 1 || record.cmd.len < 1) return;
  kv_array_param_t args, vars;
  kv_process_command(record.cmd, args, vars);
}
