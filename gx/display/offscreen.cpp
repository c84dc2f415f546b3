#include "gx/display/offscreen.h"

#include <X11/Xlib.h>

#include "gx/display/pen.h"
#include "gx/display/window.h"
#include "gx/vext.h"

namespace {
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
}  // namespace

gx_offscreen_t::gx_offscreen_t(const gx_bounds16_t& box) : box_(box) {
  auto& v = gx_vext;
  if (v.dpy == nullptr || v.drawable != 0 || !has_picture()) return;
  gx_pen_flush();
  v.drawable = v.hidden_picture;
  shows_ = true;
}

gx_offscreen_t::~gx_offscreen_t() {
  auto& v = gx_vext;
  if (!shows_) return;
  gx_pen_flush();
  v.drawable = 0;
  if (v.dpy == nullptr || box_.xmax < box_.xmin || box_.ymax < box_.ymin) return;
  XCopyArea(v.dpy, v.hidden_picture, v.win, v.copy_gc, box_.xmin, box_.ymin,
            static_cast<unsigned>(box_.xmax - box_.xmin + 1),
            static_cast<unsigned>(box_.ymax - box_.ymin + 1), box_.xmin, box_.ymin);
  XFlush(v.dpy);
}
