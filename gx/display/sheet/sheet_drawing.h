// All frames, instances or nets of a sheet; and selecting one with all below it.
#pragma once

#include "gx/db/ids.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/draw_strokes.h"

void lb_display_all_frame(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_all_inst(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_all_net(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_one_inst(gx_vpid_t vpid, gx_file_index_t file_index, int inst, gx_draw_mode mode);

// The flags of an object and of all below it, shown at once.
void lb_select_inst_prim(gx_file_index_t file_index, int inst);
void lb_unselect_inst_prim(gx_file_index_t file_index, int inst);
void lb_select_frame_prim(gx_file_index_t file_index, int frame);
void lb_unselect_frame_prim(gx_file_index_t file_index, int frame);
void lb_select_net(gx_file_index_t file_index, int net);
void lb_unselect_net(gx_file_index_t file_index, int net);
void lb_delete_symbol_prim(gx_file_index_t file_index, int symbol);
