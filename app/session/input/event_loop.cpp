// The event loop: one event at a time, dispatched by its kind through a table.
#include "app/session/input/event_loop.h"

#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "app/hint/hint.h"
#include "app/language/completion.h"
#include "app/language/do_file.h"
#include "app/language/shell_escape.h"
#include "app/session/input/buttons.h"
#include "app/session/input/gestures.h"
#include "app/session/input/menu_actions.h"
#include "app/session/input/recall.h"
#include "app/sheet/pan.h"
#include "app/sheet/panes.h"
#include "app/sheet/views.h"
#include "app/tree/tree_view.h"
#include "app/values/waves.h"
#include "gx/display/input/cursor.h"
#include "gx/display/input/events.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/input/menu_draw.h"
#include "gx/display/list_viewport.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/draw.h"
#include "gx/display/strokes/offscreen.h"
#include "gx/display/viewports.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/messages/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

constexpr int max_lost_events = 20;
constexpr std::uint32_t control = 4;
constexpr std::uint32_t insert_char_key = 0xFF72, delete_char_key = 0xFF73;  // older keyboards
constexpr int wheel_lines = 3;                                               // that the list moves
constexpr std::int32_t max_typed_length = 193;

// One running loop: the tables of its commands, and whether it is to be left now.
struct loop_t {
  kv_array_param_t& args;
  kv_array_param_t& vars;
  bool first;
  bool leave = false;
};

// While it lives the menus and the rubber rectangle are off the screen: a command draws below them.
struct cleared_screen_t {
  cleared_screen_t() {
    gx_rectangle_erase();
    gx_hide_menus();
  }
  ~cleared_screen_t() { gx_redraw_menus(gx_vext.viewport_edit); }
  cleared_screen_t(const cleared_screen_t&) = delete;
  cleared_screen_t& operator=(const cleared_screen_t&) = delete;
};

// The text is a copy: the command may replace the binding it came from.
void run_command(loop_t& loop, gx_string_record_t line) {
  const cleared_screen_t cleared;
  kv_process_line(line, loop.args, loop.vars);
  kv_follow_tree();
}

void run_binding(loop_t& loop, const gx_string_record_t& action) {
  if (gx_is_blank(gx_view(action))) return;
  gx_viewport_select(gx_vext.viewport_id);
  run_command(loop, action);
}

const gx_string_record_t& other_binding(gx_other_key key) {
  return gx_at(gx_vext.action_other, static_cast<int>(key));
}

void run_and_leave(loop_t& loop, std::string_view command) {
  run_command(loop, gx_string(command));
  loop.leave = true;
}

// --- keys with a table for each modifier

// Position in the tables below: none, shift, control, alt.
std::optional<std::size_t> modifier_index(std::uint32_t modifiers) {
  switch (modifiers) {
    case 0:
      return 0;
    case 1:
      return 1;
    case 4:
      return 2;
    case 8:
      return 3;
    default:
      return {};
  }
}

template <std::size_t Keys>
using key_tables_t = std::array<std::array<gx_string_record_t, Keys>*, 4>;

template <std::size_t Keys>
void run_key(loop_t& loop, const key_tables_t<Keys>& tables, std::uint32_t key,
             const gx_event_t& event) {
  if (const auto table = modifier_index(event.modifiers)) {
    run_binding(loop, (*tables[*table])[key]);
  }
}

bool is_function_key(std::uint32_t keysym) { return keysym >= XK_F1 && keysym <= XK_F12; }

// Position of an arrow key in its tables.
std::optional<std::size_t> arrow_index(std::uint32_t keysym) {
  switch (keysym) {
    case XK_Up:
      return 0;
    case XK_Left:
      return 1;
    case XK_Down:
      return 2;
    case XK_Right:
      return 3;
    default:
      return {};
  }
}

void run_helper(std::string_view program) {
  if (gx_vext.CapsLockState != 0) {
    const cleared_screen_t cleared;
    kv_exec_cmd(program);
  } else {
    gx_display_list("!! Warning : Your Caps Lock Key in ON , So RELEASE IT FIRST Please !! ",
                    gx_line_kind::warning);
  }
}

// --- typing

bool is_return(std::uint32_t keysym) { return keysym == XK_Return || keysym == XK_Linefeed; }
bool is_printable(std::uint32_t keysym) { return keysym >= 32 && keysym <= 126; }

void delete_before_caret() {
  if (gx_vext.viewport_id == gx_vext.viewport_cmd)
    return gx_backsp_action(gx_vext.viewport_id, gx_vext.pixel_pos);
  std::string text(gx_view(gx_vext.str_cmd));
  const int caret = gx_caret();
  if (caret < 2) return;
  text.erase(static_cast<std::size_t>(caret - 2), 1);
  gx_set_command_line(text, caret - 1);
}

void on_control_key(loop_t& loop, std::uint32_t keysym) {
  const std::uint32_t letter = keysym >= 'A' && keysym <= 'Z' ? keysym - 'A' + 'a' : keysym;
  const std::string_view line = gx_view(gx_vext.str_cmd);
  if (letter == 'a') {
    gx_set_command_line(line, 1);
  } else if (letter == 'e') {
    gx_set_command_line(line, 0);
  } else if (letter == 'k') {
    gx_cut_line(gx_cut::behind);
  } else if (letter == 'f') {
    run_binding(loop, other_binding(gx_other_key::control_f));
  } else if (letter >= 'n' && letter <= 'z') {
    run_binding(loop, gx_vext.action_ck[letter - 'n']);
  } else if (letter == 'c') {
    run_and_leave(loop, "BYE ");
  } else if (letter == 'd') {
    run_and_leave(loop, "QUIT ");
  } else if (letter == '/' || letter == '?') {
    const gx_string_record_t present = gx_vext.str_cmd;
    kv_expand_cmd(present);
  }
}

// By itself it empties the command line. One that is bound ends the question of a READln, too.
void on_escape(loop_t& loop) {
  const gx_string_record_t& bound = other_binding(gx_other_key::escape);
  if (gx_is_blank(gx_view(bound))) return gx_set_command_line("");
  run_binding(loop, bound);
  if (!loop.first) loop.leave = true;
}

void on_plain_key(loop_t& loop, std::uint32_t keysym) {
  if (is_return(keysym)) {
    const cleared_screen_t cleared;
    kv_ascii_action(keysym, loop.args, loop.vars);
    kv_follow_tree();
    return;
  }
  if (is_printable(keysym)) {
    kv_ascii_action(keysym, loop.args, loop.vars);
    return;
  }
  switch (keysym) {
    case XK_BackSpace:
      delete_before_caret();
      break;
    case XK_Delete:
    case delete_char_key:
      gx_chardel_action(gx_vext.viewport_id, gx_vext.pixel_pos);
      break;
    case XK_Insert:
    case insert_char_key:
      gx_again_action(gx_vext.viewport_id, gx_vext.pixel_pos);
      break;
    case XK_Tab:
      run_binding(loop, other_binding(gx_other_key::tab));
      break;
    case XK_Escape:
      on_escape(loop);
      break;
    default:
      break;
  }
}

// The Page keys, over a list that is not the plain one.
bool scrolls_pages() { return gx_vext.viewport_id == gx_vext.viewport_list && !gx_list_is_plain(); }

void on_key_press(loop_t& loop, const gx_event_t& event) {
  auto& v = gx_vext;
  const std::uint32_t keysym = event.code;
  kv_pext.hands.turns_wheel = false;
  if (is_function_key(keysym)) {
    run_key<12>(loop, {&v.action_f, &v.action_fs, &v.action_fc, &v.action_fa}, keysym - XK_F1,
                event);
  } else if (const auto arrow = arrow_index(keysym)) {
    run_key<4>(loop, {&v.action_a, &v.action_as, &v.action_ac, &v.action_aa},
               static_cast<std::uint32_t>(*arrow), event);
  } else if ((keysym == XK_Prior || keysym == XK_Next) && scrolls_pages()) {
    gx_upd_display_list(keysym == XK_Prior, std::max(v.nb_line_in_listviewp - 1, 1));
  } else if (keysym == XK_Prior) {
    run_helper("kivoMenuDB");
  } else if (keysym == XK_Next) {
    run_helper("kivoKeysDB");
  } else if ((event.modifiers & control) != 0) {
    on_control_key(loop, keysym);
  } else {
    on_plain_key(loop, keysym);
  }
}

void on_key_release(loop_t& loop, const gx_event_t& event) {
  auto& v = gx_vext;
  if (!is_function_key(event.code)) return;
  run_key<12>(loop, {&v.action_fup, &v.action_fsup, &v.action_fcup, &v.action_faup},
              event.code - XK_F1, event);
}

void on_button(loop_t& loop, const gx_event_t& event) {
  kv_button(event, [&](std::string_view command) { run_binding(loop, gx_string(command)); });
}

// --- the pointer

int pointer_shape(gx_vpid_t vpid) {
  if (vpid == gx_vext.viewport_cmd) return 8;
  if (vpid == gx_vext.viewport_list) return 6;
  if (vpid == gx_vext.viewport_edit) return 2;
  return vpid == gx_vext.viewport_context || vpid == gx_vext.viewport_activ ? 7 : 2;
}

void enter_viewport(gx_vpid_t vpid) {
  gx_cursor_set_pattern(pointer_shape(vpid));
  if (gx_viewport_ok(kv_pext.prev_viewport_id)) {
    kv_frame_quiet(kv_pext.prev_viewport_id);
  }
  kv_frame_active(vpid);
  kv_pext.prev_viewport_id = vpid;
}

// Turning the wheel zooms the picture around the pointer, or scrolls the list.
void turn_wheel(gx_vpid_t vpid, const gx_event_t& event) {
  const bool away = event.wheel > 0;
  if (vpid == gx_vext.viewport_list) gx_upd_display_list(away, wheel_lines);
  const bool is_edit = vpid == gx_vext.viewport_edit;
  if (!is_edit && vpid != gx_vext.viewport_context) return;
  if (is_edit && gx_vext.display_on) kv_remember_view();
  kv_zoom_at(vpid, event.pixel, away ? 4 : 5, away ? 5 : 4);
}

// The binding of a turn over a picture; null when the wheel does there what it does by itself.
const gx_string_record_t* wheel_binding(gx_vpid_t vpid, const gx_event_t& event) {
  if (vpid != gx_vext.viewport_edit && vpid != gx_vext.viewport_context) return nullptr;
  const bool shifted = (event.modifiers & kv_shift_held) != 0;
  const auto key = event.wheel > 0
                       ? (shifted ? gx_other_key::shift_wheel_up : gx_other_key::wheel_up)
                       : (shifted ? gx_other_key::shift_wheel_down : gx_other_key::wheel_down);
  const gx_string_record_t& action = other_binding(key);
  return gx_is_blank(gx_view(action)) ? nullptr : &action;
}

void on_pointer_moved(loop_t& loop, const gx_event_t& event) {
  kv_follow_drag(event, [&](std::string_view command) { run_binding(loop, gx_string(command)); });
  const gx_vpid_t vpid = gx_vext.viewport_id;
  if (vpid != kv_pext.prev_viewport_id) enter_viewport(vpid);
  gx_follow_caret();
  const bool is_picture = vpid == gx_vext.viewport_edit || vpid == gx_vext.viewport_context;
  if (is_picture && gx_vext.pixel_pos != kv_pext.last_pixel_pos) {
    kv_pext.last_pixel_pos = gx_vext.pixel_pos;
    if (kv_pext.mark_rect_done) gx_rectangle_action();
  }
  if (event.wheel == 0 || gx_vext.menu_drawn) return;
  const gx_string_record_t* const bound = wheel_binding(vpid, event);
  if (bound == nullptr) return turn_wheel(vpid, event);
  run_binding(loop, *bound);
  kv_pext.hands.turns_wheel = true;
}

// The pointer is put onto its place, once: where it is there already it is left alone.
void on_pointer_at_rest(loop_t&, const gx_event_t& event) {
  const gx_vpid_t vpid = gx_vext.viewport_id;
  const bool is_in_place = event.pixel == gx_vext.pixel_pos || event.pixel == gx_vext.pointer_put;
  const bool is_put =
      vpid == gx_vext.viewport_cmd || (gx_vext.snap_state && gx_is_picture_viewport(vpid));
  if (is_put && !is_in_place) return gx_cursor_set_position(gx_vext.pixel_pos, event.pixel);
  kv_show_hint(event.pixel);
}

// --- the window

void on_exposed(loop_t&, const gx_event_t& event) {
  gx_vext.display_rectangle_todo = false;
  gx_hide_menus();
  {
    const gx_offscreen_t picture({0, 0, gx_vext.bitmap_size.x, gx_vext.bitmap_size.y});
    kv_draw_window(event.resized);
  }
  gx_redraw_menus(gx_vext.viewport_edit);
}

// The first line of it, as far as there is room.
void on_pasted(loop_t&, const gx_event_t& event) {
  std::string text = event.text.substr(0, event.text.find_first_of("\r\n"));
  std::erase_if(text, [](char c) { return c < ' ' || c > '~'; });
  const int room = std::max(max_typed_length + 1 - gx_vext.str_cmd.len, 0);
  gx_insert_text(std::string_view(text).substr(0, static_cast<std::size_t>(room)));
}

void on_close_asked(loop_t& loop, const gx_event_t&) { run_and_leave(loop, "BYE "); }

void on_menu_line(loop_t&, const gx_event_t&) { kv_locator_in_menu(); }
void on_menu_outside(loop_t&, const gx_event_t&) { kv_locator_out_menu(); }
void on_menu_opening(loop_t&, const gx_event_t&) { kv_locator_in_boxmen(); }

// --- dispatch

using action_t = void (*)(loop_t&, const gx_event_t&);
// An event of another kind does nothing.
constexpr std::pair<gx_event_kind, action_t> actions[] = {
    {gx_event_kind::key_press, on_key_press},
    {gx_event_kind::key_release, on_key_release},
    {gx_event_kind::pointer_moved, on_pointer_moved},
    {gx_event_kind::pointer_at_rest, on_pointer_at_rest},
    {gx_event_kind::button1_down, on_button},
    {gx_event_kind::button1_up, on_button},
    {gx_event_kind::button2_down, on_button},
    {gx_event_kind::button2_up, on_button},
    {gx_event_kind::button3_down, on_button},
    {gx_event_kind::button3_up, on_button},
    {gx_event_kind::menu_line, on_menu_line},
    {gx_event_kind::menu_outside, on_menu_outside},
    {gx_event_kind::menu_opening, on_menu_opening},
    {gx_event_kind::exposed, on_exposed},
    {gx_event_kind::close_asked, on_close_asked},
    {gx_event_kind::pasted, on_pasted},
};

void act_on(loop_t& loop, const gx_event_t& event) {
  for (const auto& [kind, action] : actions)
    if (kind == event.kind) action(loop, event);
}

void put_pointer_into_edit_viewport() {
  if (!gx_viewport_ok(gx_vext.viewport_edit)) return;
  const gx_bounds16_t& box = gx_viewport_rec(gx_vext.viewport_edit).pixel_bounds;
  gx_vext.pixel_pos = {static_cast<std::int16_t>((box.xmin + box.xmax) / 2),
                       static_cast<std::int16_t>((box.ymin + box.ymax) / 2)};
  gx_cursor_set_position(gx_vext.pixel_pos);
}

}  // namespace

void kv_draw_window(bool resized) {
  kv_place_panes();
  gx_clear_window();
  if (kv_pext.file_id_cur > 0 && resized) {
    kv_expose_viewport_edit();
    kv_expose_viewport_context();
  } else if (kv_pext.file_id_cur > 0) {
    kv_update_viewport_edit();
    kv_update_viewport_context();
  }
  for (const gx_vpid_t vpid :
       {gx_vext.viewport_edit, gx_vext.viewport_context, gx_vext.viewport_list}) {
    kv_frame_quiet(vpid);
  }
  kv_draw_tree();
  gx_regen_display_list();
  kv_pext.prev_viewport_id = gx_vext.viewport_cmd;
  gx_display_cmd(gx_view(gx_vext.str_cmd));
  kv_frame_active(gx_vext.viewport_cmd);
}

void kv_process_events(bool first, kv_array_param_t& args, kv_array_param_t& vars) {
  gx_debug_line(" KV_PROCESS_EVENTS  : START ");
  loop_t loop{args, vars, first};
  int lost_events = 0;
  kv_pext.hands = {};
  kv_follow_tree();  // of the start-up file
  if (!first) gx_redraw_menus(gx_vext.viewport_edit);
  while (!loop.leave) {
    const gx_event_t event = gx_input_event_wait();
    if (event.kind == gx_event_kind::exposed) kv_forget_hint();
    if (event.kind != gx_event_kind::nothing) kv_hide_hint();
    if (kv_pan(event)) continue;
    const auto run = [&](std::string_view command) { run_command(loop, gx_string(command)); };
    if (kv_wave_gesture(event, run) || kv_tree_gesture(event, run)) continue;
    const bool is_lost = gx_vext.viewport_id < 1 || gx_vext.viewport_id > gx_max_viewports;
    if (is_lost && event.kind != gx_event_kind::close_asked) {
      if (++lost_events > max_lost_events) {
        put_pointer_into_edit_viewport();
        lost_events = 0;
      }
    } else {
      lost_events = 0;
      act_on(loop, event);
      const bool answered =
          !first && event.kind == gx_event_kind::key_press && is_return(event.code);
      if (answered) loop.leave = true;
    }
    if (gx_vext.end_flag) loop.leave = true;
  }
  if (!first) gx_hide_menus();
}

void kv_ascii_action(std::uint32_t keysym, kv_array_param_t& args, kv_array_param_t& vars) {
  gx_string_record_t& line = gx_vext.str_cmd;
  gx_debug("  ASCII_ACTION character : \"%12d\"  %2d\n", static_cast<int>(keysym), line.len);
  if (is_return(keysym)) {
    gx_vext.istart_cmd = 1;
    if (gx_is_blank(gx_view(line))) return;
    const gx_string_record_t typed = line;
    gx_set_command_line("");
    kv_remember_typed(gx_view(typed));
    kv_process_line(typed, args, vars);
    return;
  }
  if (!is_printable(keysym)) {
    gx_debug("\n !!! error invalid char in ASCII_ACTION : keysym : %2d\n\n",
             static_cast<int>(keysym));
    gx_set_status(gx_code::invalid_string);
  }
  if (line.len > max_typed_length) return;

  const char typed = static_cast<char>(keysym);
  gx_insert_text({&typed, 1});
}
