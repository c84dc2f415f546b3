// Absolute positions and boxes, placement through instances, box and point tests, picking, the
// snap grid and the page. All in design units; angles in 1/64 degree.
#pragma once

#include <algorithm>
#include <cstdint>

#include "gx/db/file_records.h"

inline constexpr std::int32_t gx_snap_step = 5000;  // the snap grid, and the least grid step
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
void gx_arc_abs_difang(const gx_file_gene_recf_t& file, int inst, std::int32_t& angle1,
                       std::int32_t& angle2);

// The father's box grows to hold the object's.
void gx_compute_new_object_bounds(const gx_file_gene_recf_t& file, int id, int father);
// The box of a property's text, relative to its origin.
gx_boundsreal_t gx_property_compute_newbounds(const gx_object_property_rec_t& property);

bool gx_point_inside_bounds16(const gx_bounds16_t& box, int x, int y);          // strictly
bool gx_point_inside_boundsreal(const gx_boundsreal_t& box, gx_pointreal_t p);  // strictly
bool gx_point_insideon_boundsreal(const gx_boundsreal_t& box, gx_pointreal_t p);
// A corner of the box is not strictly inside the outer box.
bool gx_part_object_outside_bounds(const gx_boundsreal_t& box, const gx_boundsreal_t& outer);
// The same for an object, in the coordinates of its father (0: never outside); `box` is its box
// there.
bool gx_part_object_outside_father_bounds(const gx_file_gene_recf_t& file, int id, int father,
                                          gx_boundsreal_t& box);
bool gx_point_inside_obj_absbounds(const gx_file_gene_recf_t& file, int id, int inst,
                                   gx_pointreal_t p);

// --- picking: the aperture is a centre and a half size
void gx_pick_set_center(std::int32_t x, std::int32_t y);
void gx_pick_set_size(std::int32_t w, std::int32_t h);
gx_pointreal_t gx_pick_inq_center();
gx_pointreal_t gx_pick_inq_size();
bool gx_obj_intersect_pick_aperture(const gx_file_gene_recf_t& file, int id, int inst);
bool gx_pin_intersect_pick_aperture(const gx_file_gene_recf_t& file, int pinpropfam);

// --- snap, angle, page, grid
gx_pointreal_t gx_round_snap(std::int32_t x, std::int32_t y);  // nearest multiples of 5000
std::int32_t gx_atan(std::int32_t y, std::int32_t x);          // 0..23039
// Page size: the grid object's opposite point; (0, 0) when the file has no grid.
gx_pointreal_t gx_inq_page_dim(const gx_file_gene_recf_t& file);
void gx_set_page_dim(gx_file_gene_recf_t& file, std::int32_t width, std::int32_t height);
bool gx_check_point_inpage(const gx_file_gene_recf_t& file, std::int32_t x, std::int32_t y);
bool gx_object_out_page(const gx_file_gene_recf_t& file, int id, std::int32_t dx, std::int32_t dy,
                        std::int32_t width, std::int32_t height);
gx_pointreal_t gx_inq_object_origin(const gx_file_gene_recf_t& file, int id);
bool gx_inq_grid_state(const gx_file_gene_recf_t& file);
void gx_set_grid_state(const gx_file_gene_recf_t& file, bool on);
std::int32_t gx_inq_grid_step(const gx_file_gene_recf_t& file);
void gx_set_grid_step(const gx_file_gene_recf_t& file, std::int32_t step);
bool gx_inq_snap_state(const gx_file_gene_recf_t& file);
void gx_set_snap_state(const gx_file_gene_recf_t& file, bool on);
