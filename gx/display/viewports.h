// The viewport table: the rectangles of the window, their borders, and simple drawing in them. The
// conversions come along.
//
// Pixels are window coordinates. Every drawing operation selects its viewport first. A bad id stops
// with viewport_id_invalid.
#pragma once

#include <string_view>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewport_coords.h"

// There is something to draw into: false after gx_init_nograph and before any init.
bool gx_drawing_possible();
// Somebody may look at what is drawn: not in a batch. Viewports are placed and zoomed as always.
bool gx_is_seen();

// Stops with viewport_id_invalid unless the id is in use; gives its record.
gx_viewport_rec_t& gx_viewport_rec(int vpid);

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
bool gx_viewport_ok(int vpid);          // an id in use
bool gx_is_picture_viewport(int vpid);  // edit, context or activ

// --- text and simple drawing inside a viewport, relative to its top left pixel. A blocked viewport
//     stops with viewport_blocked, a bad style with invalid_style.
void gx_viewport_display_text(gx_vpid_t vpid, std::string_view text, gx_point16_t position,
                              bool whole_line, int color);
void gx_viewport_draw_segment(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2, int color,
                              int style);
// nx by ny dots (2..50 each) over the rectangle.
void gx_viewport_draw_grid(gx_vpid_t vpid, gx_point16_t p1, gx_point16_t p2, int nx, int ny,
                           int color);

// The object's absolute box meets the part of the design that the viewport shows.
bool gx_part_object_inside_vp_bounds(gx_vpid_t vpid, const gx_file_gene_recf_t& file, int id,
                                     int inst);
