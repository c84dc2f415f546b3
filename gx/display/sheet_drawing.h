// All frames, instances or nets of a sheet.
#pragma once

#include "gx/db/ids.h"
#include "gx/display/draw_mode.h"
#include "gx/display/screen_state.h"

void lb_display_all_frame(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_all_inst(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_all_net(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode);
void lb_display_one_inst(gx_vpid_t vpid, gx_file_index_t file_index, int inst, gx_draw_mode mode);
