#include "gx/display/cursor.h"

#include <X11/Xlib.h>

#include <algorithm>

#include "gx/display/pen.h"
#include "gx/text/at.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
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
  if (v.dpy == nullptr) return;
  const int pattern = v.cmd_executing ? watch_pattern : v.cursor_ind_cur;
  const auto& cursor = gx_at(v.cursor_array, pattern - 1);
  if (cursor.cursid != 0) {
    const auto& shade = v.colorrec[std::min<std::size_t>(cursor.color, 7)];
    XColor foreground{}, background{};
    foreground.red = shade.red;
    foreground.green = shade.green;
    foreground.blue = shade.blue;
    XRecolorCursor(v.dpy, cursor.cursid, &foreground, &background);
  }
  XDefineCursor(v.dpy, v.win, cursor.cursid);
  XFlush(v.dpy);
}

// Puts the pointer at a pixel; with a window, only while it is near `from` there, which the server
// looks at: what a user does meanwhile is not undone.
void warp(Window window, gx_point16_t from, gx_point16_t pixel) {
  check_ready();
  if (gx_vext.dpy == nullptr) return;
  show_cursor("gx_cursor_set_position ");
  const auto kept = [](int at, int size) {
    return std::clamp(at, pointer_margin, std::max(size - pointer_margin, pointer_margin));
  };
  auto& v = gx_vext;
  v.pointer_put = {static_cast<std::int16_t>(kept(pixel.x, v.bitmap_size.x)),
                   static_cast<std::int16_t>(kept(pixel.y, v.bitmap_size.y))};
  v.was_put = true;
  gx_pen_flush();
  constexpr unsigned near = 2 * pointer_margin + 1;
  XWarpPointer(v.dpy, window, v.win, from.x - pointer_margin, from.y - pointer_margin, near, near,
               v.pointer_put.x, v.pointer_put.y);
  XFlush(v.dpy);
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
  if (gx_vext.dpy == nullptr) return;
  show_cursor("gx_cursor_active");
}

void gx_cursor_erase() {
  check_ready();
  if (gx_vext.dpy == nullptr) return;
  XUndefineCursor(gx_vext.dpy, gx_vext.win);
  XFlush(gx_vext.dpy);
}

void gx_cursor_set_position(gx_point16_t pixel) { warp(None, {}, pixel); }

void gx_cursor_set_position(gx_point16_t pixel, gx_point16_t from) {
  warp(gx_vext.win, from, pixel);
}
