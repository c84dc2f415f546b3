// A name at a vertex or pin of a net: a line to a box with the name in it.
#pragma once

#include "gx/db/file/file_records.h"
#include "gx/display/screen_state.h"

// Draws the probe in the selected viewport, edit or context; elsewhere, without a name, and where
// it would leave the viewport nothing is drawn. Stops on an end that is neither vertex nor pin.
void gx_display_probe(gx_vpid_t vpid, gx_file_index_t file_index,
                      const gx_display_probe_rec_t& probe);

// Whether the viewport has room for all of it.
bool gx_probe_fits(gx_vpid_t vpid, gx_file_index_t file_index, const gx_display_probe_rec_t& probe);
