#include "gx/display/drawable_size.h"

#include <cstdint>

#include "gx/display/screen_state.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/vext.h"

void gx_take_size(int width, int height) {
  auto& v = gx_vext;
  const auto pixels = [](int number) { return static_cast<std::int16_t>(number); };
  v.bitmap_size = {pixels(width - 1), pixels(height - 1)};
  v.pixel_pos = {pixels(width / 2), pixels(height / 2)};
  v.cmd_x0 = pixels(v.cmd_xi * (width - 1) / 1024);
  v.cmd_y0 = pixels(v.cmd_yi * (height - 1) / 768);
  v.listb_x0 = pixels(v.listb_xi * (width - 1) / 1024);
  v.listb_y0 = pixels(v.listb_yi * (height - 1) / 768);
  v.cmd_height = v.list_height = pixels(10 * height / 768);
  v.cmd_step = pixels(12 * width / 1024);
  v.list_step = pixels(10 * height / 384);
  gx_setarray_hortext();
}
