// Absolute places: from origins relative to fathers, through the instance that places a symbol.
// Design units, angles in 1/64 degree. An id that names nothing, an instance placed through
// another, and an object that is not of the instance's symbol stop with object_id_invalid.
#pragma once

#include <cstdint>

#include "gx/db/file/file_records.h"

struct gx_placed_t {
  gx_pointreal_t origin;
  gx_boundsreal_t bounds;
};
// Absolute origin and box of an object; `inst` is the instance it is placed through, 0 for none.
// Placed through an instance are the objects of its symbol and the pins of its own.
gx_placed_t gx_object_abs_origin_bounds(const gx_file_gene_recf_t& file, int id, int inst);
gx_pointreal_t gx_object_abs_origin(const gx_file_gene_recf_t& file, int id, int inst);
// Of a pin of an instance, by its pin property family, which must be alive.
gx_placed_t gx_pin_abs_origin_bounds(const gx_file_gene_recf_t& file, int pinpropfam);
gx_pointreal_t gx_pin_abs_origin(const gx_file_gene_recf_t& file, int pinpropfam);
// Turns the angles of an arc as the instance does (0: leaves them).
void gx_arc_abs_difang(const gx_file_gene_recf_t& file, int inst, std::int32_t& angle1,
                       std::int32_t& angle2);
// The point at `d` from `p0`, turned and mirrored as the instance is (0: not). A bad angle stops
// with coordonate_conversion_overflow.
gx_pointreal_t gx_viewport_dpt_obj2d_inst(const gx_file_gene_recf_t& file, int inst,
                                          gx_pointreal_t p0, gx_pointreal_t d);
