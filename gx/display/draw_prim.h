// One primitive or pin in the selected viewport.
#pragma once

#include "gx/db/ids.h"
#include "gx/display/draw_mode.h"
#include "gx/display/draw_steps.h"
#include "gx/display/screen_state.h"

void gx_display_prim(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                     gx_draw_mode mode, bool force_selected);
void gx_display_pin(gx_vpid_t vpid, gx_file_index_t file_index, int pin_id, int inst_id,
                    gx_draw_mode mode, bool force_selected);

// Without the checks of the viewport, for the rooms that made them already.
void gx_draw_prim(const gx_picture_t& picture, int object_id, int inst_id, bool force_selected);
void gx_draw_pin(const gx_picture_t& picture, int pin_id, int inst_id, bool force_selected);
