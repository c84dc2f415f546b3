// The page frame and the dots of the grid.
#pragma once

#include "gx/db/file/file_records.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/picture/shape.h"

gx_object_id_t gx_object_inq_grid_id(const gx_file_gene_recf_t& file);
// The dots are shown while fewer than 41 steps go across the viewport's shorter side.
void gx_set_grid_visibility(gx_file_index_t file_index, gx_vpid_t vpid);

// Without the checks of the viewport, for the rooms that made them already.
void gx_draw_grid(const gx_picture_t& picture, const gx_shape_t& page);
