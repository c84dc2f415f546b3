// The rectangle that follows the pointer while a corner is marked, drawn by exclusive-or so that
// drawing it twice leaves the picture as it was.
#include "gx/display/input/rubber_rectangle.h"

#include "gx/display/screen_state.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/viewport_coords.h"
#include "gx/display/viewports.h"
#include "gx/vext.h"

namespace {

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
