// Drawing design objects into a viewport. Items outside the viewport are skipped before any
// request is made. Without a display nothing happens.
#pragma once

#include "gx/db/file_records.h"
#include "gx/db/ids.h"
#include "gx/display/screen_state.h"

enum class gx_draw_mode { draw, erase };

void gx_display_object(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                       bool keep_scale, gx_draw_mode mode, bool force_selected);
void gx_display_object_part(gx_vpid_t vpid, gx_file_index_t file_index, int object_id,
                            gx_pointreal_t p1, gx_pointreal_t p2, int inst_id, gx_draw_mode mode,
                            bool force_selected);
void gx_display_prim(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                     gx_draw_mode mode, bool force_selected);
void gx_display_pin(gx_vpid_t vpid, gx_file_index_t file_index, int pin_id, int inst_id,
                    gx_draw_mode mode, bool force_selected);
void gx_display_net(gx_vpid_t vpid, gx_file_index_t file_index, int net_id, gx_draw_mode mode);
void gx_display_probe(gx_vpid_t vpid, gx_file_index_t file_index,
                      const gx_display_probe_rec_t& probe);

// --- markers, design units; only in the edit and context viewports
void gx_display_cross(gx_vpid_t vpid, gx_pointreal_t p);
void gx_display_half_cross(gx_vpid_t vpid, gx_pointreal_t p);
void gx_display_selvertex(gx_vpid_t vpid, gx_pointreal_t p);
void gx_display_pin_nocon(gx_vpid_t vpid, gx_pointreal_t p);
void gx_display_link(gx_vpid_t vpid, gx_pointreal_t from, gx_pointreal_t to);

// --- shapes in pixels
// A filled square of side 2 * half_size around the pixel, when it lies whole in the clip window.
void gx_display_dot(gx_vpid_t vpid, gx_point16_t pixel, int half_size, int color);
// `pixel_width` nested outlines.
void gx_display_rectangle(gx_point16_t p1, gx_point16_t p2, int style, int color, int pixel_width);
void gx_display_rectangle_dot(gx_point16_t p1, gx_point16_t p2, int color, int dot_size);

// --- grid
gx_object_id_t gx_object_inq_grid_id(const gx_file_gene_recf_t& file);
void gx_set_grid_visibility(gx_file_index_t file_index, gx_vpid_t vpid);

// --- whole sheets
void lb_display_all_frame(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_all_inst(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_all_net(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_one_inst(gx_vpid_t vpid, gx_file_index_t file_index, int inst, gx_draw_mode mode);

// --- selection of whole objects: flags of the object and its children
void lb_select_inst_prim(gx_file_index_t file_index, int inst);
void lb_unselect_inst_prim(gx_file_index_t file_index, int inst);
void lb_select_frame_prim(gx_file_index_t file_index, int frame);
void lb_unselect_frame_prim(gx_file_index_t file_index, int frame);
void lb_select_net(gx_file_index_t file_index, int net);
void lb_unselect_net(gx_file_index_t file_index, int net);
void lb_delete_symbol_prim(gx_file_index_t file_index, int symbol);
