// Marks at places of the design, drawn in the edit and context viewports; elsewhere nothing. The
// viewport must be the selected one: another stops with viewport_id_invalid.
#pragma once

#include "gx/display/screen_state.h"

void gx_display_cross(gx_vpid_t vpid, gx_pointreal_t p);       // an origin
void gx_display_half_cross(gx_vpid_t vpid, gx_pointreal_t p);  // the base point
void gx_display_selvertex(gx_vpid_t vpid, gx_pointreal_t p);
void gx_display_pin_nocon(gx_vpid_t vpid, gx_pointreal_t p);  // an unconnected pin
void gx_display_link(gx_vpid_t vpid, gx_pointreal_t from, gx_pointreal_t to);

// What a command marks stays: it is drawn at once, whatever viewport is selected, and again with
// every picture of the viewport, until it is forgotten.
void gx_keep_cross(gx_vpid_t vpid, gx_pointreal_t p);
void gx_keep_link(gx_vpid_t vpid, gx_pointreal_t from, gx_pointreal_t to);
void gx_display_kept_marks(gx_vpid_t vpid);
void gx_forget_marks(gx_vpid_t vpid);
