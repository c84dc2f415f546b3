// Objects with all below them, and the pictures of a viewport.
#pragma once

#include "gx/db/ids.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/picture/shape.h"

// Makes the object the root of the viewport's picture, fits it unless the scale is kept, and draws
// it with all below it.
void gx_display_object(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                       bool keep_scale, gx_draw_mode mode, bool force_selected);
// The same at the scale that shows the rectangle.
void gx_display_object_part(gx_vpid_t vpid, gx_file_index_t file_index, int object_id,
                            gx_pointreal_t p1, gx_pointreal_t p2, int inst_id, gx_draw_mode mode,
                            bool force_selected);

// The primary object of the file that the viewport shows, at the present scale; `partial` does not
// clear before.
void gx_viewport_refresh(gx_vpid_t vpid, bool force_selected);
void gx_viewport_refresh_partial(gx_vpid_t vpid, bool force_selected);

// A file's primary object, whole or a rectangle of it, and the base point, in the edit, context or
// activ viewport. The marks kept there are forgotten.
void gx_display_picture_all(gx_vpid_t vpid, gx_file_index_t file_index);
void gx_display_picture_area(gx_vpid_t vpid, gx_file_index_t file_index, gx_pointreal_t p1,
                             gx_pointreal_t p2);

// One primitive, pin or net in the selected viewport.
void gx_display_prim(gx_vpid_t vpid, gx_file_index_t file_index, int object_id, int inst_id,
                     gx_draw_mode mode, bool force_selected);
void gx_display_pin(gx_vpid_t vpid, gx_file_index_t file_index, int pin_id, int inst_id,
                    gx_draw_mode mode, bool force_selected);
void gx_display_net(gx_vpid_t vpid, gx_file_index_t file_index, int net_id, gx_draw_mode mode);

// Where shapes go that are drawn into a picture, for the rooms that checked its viewport already.
// The picture must outlive the sink. Probes and marked names of nets are drawn with the nets.
gx_sink_t gx_screen_sink(const gx_picture_t& picture);
