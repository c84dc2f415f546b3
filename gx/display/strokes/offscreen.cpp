#include "gx/display/strokes/offscreen.h"

#include "gx/display/screen.h"
#include "gx/display/strokes/pen.h"
#include "gx/vext.h"

gx_offscreen_t::gx_offscreen_t(const gx_bounds16_t& box) : box_(box) {
  if (gx_vext.screen == nullptr) return;
  holds_ = gx_pen_hold();
  if (holds_) return;
  gx_pen_flush();
  shows_ = gx_vext.screen->begin_picture();
}

gx_offscreen_t::~gx_offscreen_t() {
  if (holds_) gx_pen_release();
  if (!shows_) return;
  gx_pen_flush();
  if (gx_vext.screen != nullptr) gx_vext.screen->end_picture(box_);
}
