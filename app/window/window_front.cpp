#include "app/window/window_front.h"

#include <span>
#include <string>
#include <string_view>

#include "app/hint/hint.h"
#include "app/session/input/event_loop.h"
#include "app/session/root.h"
#include "app/session/root_session.h"
#include "app/state.h"
#include "app/values/answers.h"
#include "gx/db/file/file_slots.h"
#include "gx/display/input/events.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "gx/window/window.h"

namespace {
// Control+A, and Escape where it ends what is half done.
bool has_typed_stop() {
  constexpr int key_press = 0;
  constexpr std::uint32_t keysym_a = 97, keysym_escape = 0xFF1B, control = 4;
  if (gx_find_event(key_press, keysym_a, control)) return true;
  constexpr auto escape = static_cast<std::size_t>(gx_other_key::escape);
  return !gx_is_blank(gx_view(gx_vext.action_other[escape])) &&
         gx_find_event(key_press, keysym_escape, 0);
}

// In the place of the command line.
void show_in_window(std::string_view line) {
  const auto& v = gx_vext;
  if (line.empty()) return gx_display_cmd(gx_view(v.str_cmd));
  if (!gx_drawing_possible() || !gx_viewport_ok(v.viewport_cmd)) return;
  {
    const gx_batch_t batch;
    gx_viewport_display_text(v.viewport_cmd, line, {v.cmd_x0, v.cmd_y0}, true, v.cmd_color);
  }
  gx_sync();
}

constexpr gx_front_t user = {.show_progress = show_in_window, .stop_asked = has_typed_stop};

[[noreturn]] void refuse_session(const std::string& said, const std::string&) {
  std::fputs(said.c_str(), stdout);
  gx_set_status(gx_code::file_data_invalid);
}

bool answer() {
  kv_run_start_up_file();
  gx_vext.all_init_done = true;
  gx_set_other_input({kv_answer_descriptor, [] {
                        kv_hide_hint();
                        kv_read_answers();
                      }});
  if (!gx_vext.end_flag) kv_process_events(true, kv_pext.ext_arg, kv_pext.top_var);
  return true;
}

int end(const kv_ended_t& ended) {
  constexpr int no_usable_sheet = 1;
  kv_print_summary();
  return kv_exit_status(ended.had_sheet ? 0 : no_usable_sheet);
}
}  // namespace

int kivo_root(int argc, char** argv) {
  gx_set_front(user);
  return kv_run({.lines = user,
                 .open_display = gx_init,
                 .refuse_start = refuse_session,
                 .answer = answer,
                 .end = end},
                std::span(argv, static_cast<std::size_t>(argc)));
}
