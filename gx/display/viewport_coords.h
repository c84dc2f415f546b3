// Pixels to design units and back, and the zoom and place of a viewport over its design.
//
// Pixels are window coordinates; results are clamped to -20000..20000. A bad id stops with
// viewport_id_invalid.
#pragma once

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/display/screen_state.h"

gx_vpid_t gx_viewport_pixel_to_vpid(gx_point16_t pixel);  // 0 when none
gx_vpid_t gx_viewport_pixel_to_obj2d(gx_point16_t pixel, gx_pointreal_t& point);
gx_point16_t gx_viewport_pt_real_to_pixel(gx_vpid_t vpid, gx_pointreal_t p);
int gx_viewport_obj2d_to_pixel(gx_vpid_t vpid, std::int32_t length);

// Neither coordinate differs by more than so many pixels.
bool gx_pixels_near(gx_point16_t a, gx_point16_t b, int pixels);

// The rectangle between two corners; one without width or height is widened to 5000 units.
gx_boundsreal_t gx_area_of(gx_pointreal_t p1, gx_pointreal_t p2);

// Zoom and pan. `fit` shows the box whole, centred, with a margin of 5 percent.
void gx_viewport_fit(gx_vpid_t vpid, const gx_boundsreal_t& box);
// What is shown, to be shown again: the same part at the same scale, or in a viewport that has
// another size since then as much as it holds around the same middle.
struct gx_shown_t {
  gx_boundsreal_t part;
  std::int32_t scale = 1;  // design units per pixel
  friend bool operator==(const gx_shown_t&, const gx_shown_t&) = default;
};
gx_shown_t gx_viewport_shown(gx_vpid_t vpid);
void gx_viewport_show(gx_vpid_t vpid, const gx_shown_t& shown);
void gx_viewport_translate(gx_vpid_t vpid, int dy_sign, int dx_sign, std::int32_t amount);
// Moves the picture by so many pixels, to the right and down.
void gx_viewport_pan(gx_vpid_t vpid, int dx, int dy);
// Scales what is shown by num / den (both above 0; 1/2 shows half as much) around a window pixel;
// the caller draws again. False when the zoom is at its limit.
bool gx_viewport_zoom_at(gx_vpid_t vpid, gx_point16_t pixel, int num, int den);
