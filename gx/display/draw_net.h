// One net in the selected viewport: its texts, segments, junction dots and marks.
#pragma once

#include "gx/db/ids.h"
#include "gx/display/draw_mode.h"
#include "gx/display/draw_steps.h"
#include "gx/display/screen_state.h"

void gx_display_net(gx_vpid_t vpid, gx_file_index_t file_index, int net_id, gx_draw_mode mode);

// Without the checks of the viewport, for the rooms that made them already.
void gx_draw_net(const gx_picture_t& picture, int net_id);
