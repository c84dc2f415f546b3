// Pictures that appear at once.
#pragma once

#include "gx/text/records.h"

// While one of these lives, strokes go to a picture off the screen; at its end the box (window
// pixels, both corners included) is shown. Who draws it must draw all of it. Inside another one it
// does nothing: the outermost shows what is drawn. Where the server has no room for the picture,
// and without a display, strokes go where they went.
class gx_offscreen_t {
 public:
  explicit gx_offscreen_t(const gx_bounds16_t& box);
  ~gx_offscreen_t();
  gx_offscreen_t(const gx_offscreen_t&) = delete;
  gx_offscreen_t& operator=(const gx_offscreen_t&) = delete;

 private:
  gx_bounds16_t box_;
  bool shows_ = false, holds_ = false;
};
