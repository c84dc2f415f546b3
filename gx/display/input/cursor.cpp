#include "gx/display/input/cursor.h"

#include <algorithm>

#include "gx/display/screen.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {

constexpr int watch_pattern = 9;
constexpr int pointer_margin = 18;  // the pointer is never put nearer to the window's edge

void check_ready() {
  if (!gx_vext.init_done && gx_vext.num_file_open < 1)
    gx_set_status(gx_code::init_or_open_file_not_done);
}

// Shows the present pattern, or the watch while a command runs.
void show_cursor(const char* operation) {
  const auto& v = gx_vext;
  const int nb_of_patterns = static_cast<int>(v.cursor_array.size());
  if (v.cursor_ind_cur < 1 || v.cursor_ind_cur > nb_of_patterns) {
    gx_debug(" !! error : %s : ind_curs : %2d\n", operation, v.cursor_ind_cur);
    gx_set_status(gx_code::draw_cursor_invalid);
  }
  if (v.screen != nullptr)
    v.screen->show_pointer(v.cmd_executing ? watch_pattern : v.cursor_ind_cur);
}

// Where the pointer is put for a pixel; the shape that it has is shown. Only with a screen.
gx_point16_t place_for(gx_point16_t pixel) {
  show_cursor("gx_cursor_set_position ");
  const auto kept = [](int at, int size) {
    return std::clamp(at, pointer_margin, std::max(size - pointer_margin, pointer_margin));
  };
  auto& v = gx_vext;
  v.pointer_put = {static_cast<std::int16_t>(kept(pixel.x, v.bitmap_size.x)),
                   static_cast<std::int16_t>(kept(pixel.y, v.bitmap_size.y))};
  v.was_put = true;
  gx_pen_flush();
  return v.pointer_put;
}

// The rectangle that follows the pointer while a corner is marked, drawn by exclusive-or so that
// drawing it twice leaves the picture as it was.
constexpr int rectangle_color = 7, dot_size = 3;

// The pointer is in the viewport where the rectangle began, away from its edges.
bool in_start_viewport(gx_vpid_t vpid) {
  if (!gx_is_picture_viewport(vpid) || vpid != gx_vext.viewport_id_start) return false;
  if (!gx_viewport_ok(vpid)) return false;
  const gx_bounds16_t& clip = gx_viewport_rec(vpid).clip_wind;
  const gx_point16_t at = gx_vext.pixel_pos;
  return at.x >= clip.xmin + 2 && at.x <= clip.xmax - 2 && at.y >= clip.ymin + 2 &&
         at.y <= clip.ymax - 2;
}

// Shows the rectangle, or takes it away when it is shown.
void flip_rectangle() {
  gx_pixel_op_xor();
  gx_display_rectangle_dot(gx_vext.pixel_ptr1, gx_vext.pixel_ptr2, rectangle_color, dot_size);
  gx_pixel_op_replace();
  gx_vext.display_rectangle_todo = !gx_vext.display_rectangle_todo;
}

}  // namespace

void gx_cursor_set_pattern(int index) {
  check_ready();
  if (index < 1 || index > static_cast<int>(gx_vext.cursor_array.size())) {
    gx_debug(" !! error : gx_cursor_set_pattern : ind_curs  : %2d\n", index);
    gx_set_status(gx_code::draw_cursor_invalid);
  }
  gx_vext.cursor_ind_cur = static_cast<std::int16_t>(index);
  show_cursor("gx_cursor_set_pattern");
}

void gx_cursor_active() {
  check_ready();
  if (gx_vext.screen != nullptr) show_cursor("gx_cursor_active");
}

void gx_cursor_erase() {
  check_ready();
  if (gx_vext.screen != nullptr) gx_vext.screen->hide_pointer();
}

void gx_cursor_set_position(gx_point16_t pixel) {
  check_ready();
  if (gx_vext.screen != nullptr) gx_vext.screen->put_pointer(place_for(pixel));
}

void gx_cursor_set_position(gx_point16_t pixel, gx_point16_t from) {
  check_ready();
  if (gx_vext.screen != nullptr && !gx_vext.pointer_stays)
    gx_vext.screen->put_pointer_near(place_for(pixel), from, pointer_margin);
}

void gx_rectangle_action() {
  if (gx_vext.screen == nullptr || !in_start_viewport(gx_vext.viewport_id)) return;
  if (gx_pixels_near(gx_vext.pixel_pos, gx_vext.pixel_ptr2, 2)) return;
  if (gx_pixels_near(gx_vext.pixel_pos, gx_vext.pixel_ptr1, 1)) return;
  gx_viewport_select(gx_vext.viewport_id);
  if (gx_vext.display_rectangle_todo) flip_rectangle();
  gx_vext.pixel_ptr2 = gx_vext.pixel_pos;
  flip_rectangle();
}

void gx_rectangle_erase() {
  if (gx_vext.screen == nullptr || !gx_vext.display_rectangle_todo) return;
  gx_vext.display_rectangle_todo = false;
  if (!gx_viewport_ok(gx_vext.viewport_id_start)) return;
  gx_viewport_select(gx_vext.viewport_id_start);
  gx_vext.display_rectangle_todo = true;
  flip_rectangle();
}

gx_pointreal_t gx_inq_base_point() { return gx_vext.base_point; }
