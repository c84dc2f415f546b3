// Points and boxes: turning, moving, tests, and the boxes that objects keep. Design units; angles
// in 1/64 degree. Coordinates of a file may lie anywhere in 32 bits: sums are held at the ends.
#pragma once

#include <algorithm>
#include <cstdint>

#include "gx/db/file/file_records.h"
#include "gx/db/place/page.h"
#include "gx/db/place/picking.h"
#include "gx/db/place/placement.h"

inline constexpr std::int32_t gx_full_turn = 23040;

// A sum of coordinates, held at the ends of the range.
constexpr std::int32_t gx_saturated(std::int64_t v) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(v, INT32_MIN, INT32_MAX));
}

// The offset turned by quarter turns (0..3) and mirrored: the placement of a symbol's contents.
// Another number of turns stops with coordonate_conversion_overflow.
gx_pointreal_t gx_turn(gx_pointreal_t p, int rotate, bool fliph);
gx_boundsreal_t gx_turn(gx_boundsreal_t box, int rotate, bool fliph);  // an empty box stays so
gx_boundsreal_t gx_move(gx_boundsreal_t box, gx_pointreal_t by);       // saturating
// The box grows to hold the point, or the other box; an empty one adds nothing.
void gx_include(gx_boundsreal_t& box, gx_pointreal_t p);
void gx_include(gx_boundsreal_t& box, const gx_boundsreal_t& other);
bool gx_bounds_empty(const gx_boundsreal_t& box);  // min above max
// They have a point in common: by their corners and by crossing, edges included.
bool gx_bounds_meet(const gx_boundsreal_t& a, const gx_boundsreal_t& b);
// The same with common edges left out.
bool gx_bounds_overlap(const gx_boundsreal_t& a, const gx_boundsreal_t& b);

// The father's box becomes the object's, moved by its origin.
void gx_update_father_bounds(const gx_file_gene_recf_t& file, int id, int father);
// The father's box grows to hold the object's.
void gx_compute_new_object_bounds(const gx_file_gene_recf_t& file, int id, int father);
// The box of a property's text, relative to its origin.
gx_boundsreal_t gx_property_compute_newbounds(const gx_object_property_rec_t& property);

// --- point tests. A box with its minimum above its maximum stops with viewport_bounds_invalid (of
// pixels, in y only, with bounds_invalid).
bool gx_point_inside_bounds16(const gx_bounds16_t& box, int x, int y);          // strictly
bool gx_point_inside_boundsreal(const gx_boundsreal_t& box, gx_pointreal_t p);  // strictly
bool gx_point_insideon_boundsreal(const gx_boundsreal_t& box, gx_pointreal_t p);
// A corner of the box is not strictly inside the outer box.
bool gx_part_object_outside_bounds(const gx_boundsreal_t& box, const gx_boundsreal_t& outer);
// The same for an object, in the coordinates of its father (0: never outside); `box` is its box
// there.
bool gx_part_object_outside_father_bounds(const gx_file_gene_recf_t& file, int id, int father,
                                          gx_boundsreal_t& box);
