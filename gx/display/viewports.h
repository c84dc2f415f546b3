// The viewport table and the conversions between pixels and design units.
//
// Pixels are window coordinates; results are clamped to -20000..20000. Every drawing operation
// selects its viewport first. A bad id stops with viewport_id_invalid.
#pragma once

#include "gx/db/file_records.h"
#include "gx/text/state.h"

void gx_viewport_create(const gx_boundsreal_t& bounds, const gx_border_info& border);
void gx_viewport_delete(gx_vpid_t vpid);
void gx_viewport_select(gx_vpid_t vpid);
void gx_draw_viewport_border(gx_vpid_t vpid);
void gx_draw_new_viewport_border(gx_vpid_t vpid, int pixel_width, int color);
void gx_clear_viewport(gx_vpid_t vpid);
void gx_clear_window();
void gx_viewports_update();  // after a change of bitmap_size
bool gx_check_viewport_bounds(const gx_boundsreal_t& old_bounds, const gx_boundsreal_t& bounds);
gx_bounds16_t gx_bounds_to_clipping_window(const gx_boundsreal_t& bounds,
                                           const gx_border_info& border);
gx_point16_t gx_viewport_inq_pixel_min(gx_vpid_t vpid);
bool gx_inq_file_disp_vpn(gx_file_index_t file_index, gx_vpid_t vpid);
bool gx_inq_file_displayed(gx_file_index_t file_index);
bool gx_viewport_ok(int vpid);  // an id in use

gx_vpid_t gx_viewport_pixel_to_vpid(gx_point16_t pixel);  // 0 when none
gx_vpid_t gx_viewport_pixel_to_obj2d(gx_point16_t pixel, gx_pointreal_t& point);
gx_point16_t gx_viewport_pt_real_to_pixel(gx_vpid_t vpid, gx_pointreal_t p);
int gx_viewport_obj2d_to_pixel(gx_vpid_t vpid, std::int32_t length);
gx_pointreal_t gx_viewport_dpt_obj2d_inst(const gx_file_gene_recf_t& file, int inst,
                                          gx_pointreal_t p0, gx_pointreal_t d);

// Zoom and pan. `fit` shows the box whole, centred, with a margin of 5 percent.
void gx_viewport_fit(gx_vpid_t vpid, const gx_boundsreal_t& box);
void gx_viewport_translate(gx_vpid_t vpid, int dy_sign, int dx_sign, std::int32_t amount);
void gx_viewport_refresh(gx_vpid_t vpid, bool force_selected);
void gx_viewport_refresh_partial(gx_vpid_t vpid, bool force_selected);
void gx_display_picture_all(gx_vpid_t vpid, gx_file_index_t file_index);
void gx_display_picture_area(gx_vpid_t vpid, gx_file_index_t file_index, gx_pointreal_t p1,
                             gx_pointreal_t p2);
