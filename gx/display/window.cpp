#include "gx/display/window.h"

#include <algorithm>

#include "gx/display/drawable_size.h"
#include "gx/display/list_viewport.h"
#include "gx/display/screen.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"
#include "platform/timing.h"

void gx_reset_package() {
  gx_list = {};
  gx_files = {};
  gx_undo = {};
  gx_edit = {};
  static_cast<gx_screen_state_t&>(gx_vext) = {};
  static_cast<gx_input_state_t&>(gx_vext) = {};
  static_cast<gx_menu_state_t&>(gx_vext) = {};
  static_cast<gx_key_state_t&>(gx_vext) = {};
  gx_set_list_width(gx_max_text_length);
  gx_set_list_drawer(gx_regen_display_list);
}

void gx_check_start(std::span<const gx_viewport_init_rec_t> viewports) {
  if (gx_vext.init_done) gx_set_status(gx_code::already_initialized);
  if (viewports.empty() || viewports.size() > gx_max_viewports)
    gx_set_status(gx_code::nb_of_viewport_invalid);
}

void gx_lay_out(int width, int height, std::span<const gx_viewport_init_rec_t> viewports) {
  auto& v = gx_vext;
  gx_take_size(width, height);
  gx_debug(" gx_init :  cmd_height  : %d\n gx_init :  cmd_step    : %d\n", v.cmd_height,
           v.cmd_step);
  gx_debug(" gx_init :  list_height : %d\n gx_init :  list_step   : %d\n", v.list_height,
           v.list_step);
  v.init_done = true;
  for (const auto& viewport : viewports) gx_viewport_create(viewport.bounds, viewport.border);
}

void gx_init_nograph() {
  if (gx_vext.init_done) gx_set_status(gx_code::already_initialized);
  gx_reset_package();
  gx_vext.init_done = true;
}

void gx_init_noview(std::span<const gx_viewport_init_rec_t> viewports, gx_point16_t size) {
  gx_check_start(viewports);
  gx_lay_out(std::max<int>(size.x, 2), std::max<int>(size.y, 2), viewports);
}

void gx_set_title(std::string_view title) {
  if (gx_vext.screen != nullptr) gx_vext.screen->set_title(title);
}

int gx_number_of_planes() {
  return gx_vext.screen == nullptr ? 0 : gx_vext.screen->number_of_planes();
}

void gx_terminate() {
  gx_debug_line(" gx_terminate    : start ");
  if (!gx_vext.init_done && gx_vext.num_file_open < 1)
    gx_set_status(gx_code::init_or_open_file_not_done);
  if (gx_vext.screen != nullptr) {
    gx_pen_flush();
    xdelayms(100);
    gx_vext.screen->close();
  }
  gx_debug_line(" gx_terminate    : end ");
}

void gx_sync() {
  if (gx_vext.screen == nullptr) return;
  gx_pen_flush();
  gx_vext.screen->sync();
}

void gx_wait_sync() {
  xdelayms(100);
  gx_sync();
}
