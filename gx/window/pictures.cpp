#include "gx/window/pictures.h"

#include <X11/Xlib.h>

#include "gx/display/input/menu_state.h"
#include "gx/vext.h"
#include "gx/window/window.h"

namespace {
constexpr int pixmap_margin = 10;  // what a level covers is kept at this place in its pixmap

// The pixmap, as large as the window; false when the server has no room for it.
bool has_picture() {
  auto& v = gx_vext;
  const gx_point16_t size = v.bitmap_size;
  if (v.hidden_size.x >= size.x && v.hidden_size.y >= size.y) return v.hidden_picture != 0;
  if (v.hidden_picture != 0) XFreePixmap(v.dpy, v.hidden_picture);
  v.hidden_size = size;
  const auto width = static_cast<unsigned>(size.x) + 1, height = static_cast<unsigned>(size.y) + 1;
  const bool made = gx_without_x_error([&] {
    v.hidden_picture = XCreatePixmap(v.dpy, v.win, width, height,
                                     static_cast<unsigned>(DefaultDepth(v.dpy, v.scrid)));
    XFillRectangle(v.dpy, v.hidden_picture, v.copy_gc, 0, 0, width, height);
  });
  if (!made) v.hidden_picture = 0;
  return made;
}

// Room for the area in the level's pixmap; a window that has grown needs more than at the start.
Pixmap pixmap_with_room(int level, int width, int height) {
  Window root = 0;
  int x = 0, y = 0;
  unsigned int has_width = 0, has_height = 0, border = 0, depth = 0;
  unsigned long& pixmap = gx_vext.menu_pixid[static_cast<std::size_t>(level - 1)];
  const auto needs_width = static_cast<unsigned int>(width + pixmap_margin);
  const auto needs_height = static_cast<unsigned int>(height + pixmap_margin);
  if (XGetGeometry(gx_vext.dpy, pixmap, &root, &x, &y, &has_width, &has_height, &border, &depth) !=
          False &&
      (has_width < needs_width || has_height < needs_height)) {
    XFreePixmap(gx_vext.dpy, pixmap);
    pixmap = XCreatePixmap(gx_vext.dpy, gx_vext.win, needs_width, needs_height, depth);
  }
  return pixmap;
}
}  // namespace

bool gx_begin_picture() {
  if (gx_vext.drawable != 0 || !has_picture()) return false;
  gx_vext.drawable = gx_vext.hidden_picture;
  return true;
}

void gx_end_picture(const gx_bounds16_t& shown) {
  auto& v = gx_vext;
  v.drawable = 0;
  if (shown.xmax < shown.xmin || shown.ymax < shown.ymin) return;
  XCopyArea(v.dpy, v.hidden_picture, v.win, v.copy_gc, shown.xmin, shown.ymin,
            static_cast<unsigned>(shown.xmax - shown.xmin + 1),
            static_cast<unsigned>(shown.ymax - shown.ymin + 1), shown.xmin, shown.ymin);
  XFlush(v.dpy);
}

void gx_keep_area(int level, int x, int y, int width, int height) {
  const Pixmap pixmap = pixmap_with_room(level, width, height);
  XCopyArea(gx_vext.dpy, gx_vext.win, pixmap, gx_vext.copy_gc, x, y, static_cast<unsigned>(width),
            static_cast<unsigned>(height), pixmap_margin, pixmap_margin);
}

void gx_put_area_back(int level, int x, int y, int width, int height) {
  XCopyArea(gx_vext.dpy, gx_vext.menu_pixid[static_cast<std::size_t>(level - 1)], gx_vext.win,
            gx_vext.copy_gc, pixmap_margin, pixmap_margin, static_cast<unsigned>(width),
            static_cast<unsigned>(height), x, y);
}
