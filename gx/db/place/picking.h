// What lies under the pointer: the pick aperture, a centre and a half size in design units.
//
// Boxes count, with their edges; of objects that are not drawn themselves, boxes rounded to the
// snap grid. An object that has no box stops with file_data_invalid.
#pragma once

#include <cstdint>

#include "gx/db/file/file_records.h"

// The aperture is part of the open files: before the package is initialised, or a file open,
// setting it stops with init_or_open_file_not_done; a size below 0 with pick_aperture_size_invalid.
void gx_pick_set_center(std::int32_t x, std::int32_t y);
void gx_pick_set_size(std::int32_t w, std::int32_t h);
gx_pointreal_t gx_pick_inq_center();
gx_pointreal_t gx_pick_inq_size();
bool gx_obj_intersect_pick_aperture(const gx_file_gene_recf_t& file, int id, int inst);
bool gx_pin_intersect_pick_aperture(const gx_file_gene_recf_t& file, int pinpropfam);

// Strictly inside the absolute box of the object; placed through `inst`, 0 for none.
bool gx_point_inside_obj_absbounds(const gx_file_gene_recf_t& file, int id, int inst,
                                   gx_pointreal_t p);
