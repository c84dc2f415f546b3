#include "gx/window/pointer.h"

#include <X11/Xlib.h>
#include <X11/cursorfont.h>

#include <algorithm>
#include <array>

#include "gx/display/sheet/theme.h"
#include "gx/text/at.h"
#include "gx/vext.h"

namespace {
// The pointer shapes, by pattern.
constexpr auto cursor_shapes =
    std::to_array<unsigned>({XC_X_cursor, XC_crosshair, XC_sb_down_arrow, XC_sb_left_arrow,
                             XC_sb_right_arrow, XC_sb_up_arrow, XC_tcross, XC_xterm, XC_watch});
}  // namespace

void gx_make_pointers() {
  auto& v = gx_vext;
  for (std::size_t i = 0; i < cursor_shapes.size(); ++i)
    v.cursor_array[i] = {cursor_shapes[i], XCreateFontCursor(v.dpy, cursor_shapes[i]), gx_white};
  XColor foreground{}, background{};
  foreground.red = foreground.green = foreground.blue = 65535;
  XRecolorCursor(v.dpy, v.cursor_array[0].cursid, &foreground, &background);
  XDefineCursor(v.dpy, v.win, v.cursor_array[0].cursid);
  v.cursor_ind_cur = 1;
}

void gx_show_pointer(int pattern) {
  const auto& v = gx_vext;
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

void gx_hide_pointer() {
  XUndefineCursor(gx_vext.dpy, gx_vext.win);
  XFlush(gx_vext.dpy);
}

void gx_put_pointer(gx_point16_t to) {
  XWarpPointer(gx_vext.dpy, None, gx_vext.win, 0, 0, 0, 0, to.x, to.y);
  XFlush(gx_vext.dpy);
}

void gx_put_pointer_near(gx_point16_t to, gx_point16_t from, int margin) {
  const auto size = static_cast<unsigned>(2 * margin + 1);
  XWarpPointer(gx_vext.dpy, gx_vext.win, gx_vext.win, from.x - margin, from.y - margin, size, size,
               to.x, to.y);
  XFlush(gx_vext.dpy);
}
