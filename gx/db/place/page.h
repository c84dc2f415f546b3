// The snap grid, and the page with its grid object. Design units.
//
// A sheet has one grid object, whose opposite point is the size of the page. The header's id of an
// object of another type stops with page_obj_id_invalid; a file without a grid object has the
// switches off, the least step and no page.
#pragma once

#include <cstdint>

#include "gx/db/file/file_records.h"

inline constexpr std::int32_t gx_snap_step = 5000;  // the snap grid, and the least grid step

gx_pointreal_t gx_round_snap(std::int32_t x, std::int32_t y);  // nearest multiples of 5000
// The angle of (x, y) in 1/64 degree, 0..23039, y up; three quarters of a turn for (0, 0).
std::int32_t gx_atan(std::int32_t y, std::int32_t x);

// Page size: the grid object's opposite point; (0, 0) when the file has no grid.
gx_pointreal_t gx_inq_page_dim(const gx_file_gene_recf_t& file);
void gx_set_page_dim(gx_file_gene_recf_t& file, std::int32_t width, std::int32_t height);
// At least 500 units from the edges.
bool gx_check_point_inpage(const gx_file_gene_recf_t& file, std::int32_t x, std::int32_t y);
// The object's own box moved by (dx, dy) leaves a page of that size.
bool gx_object_out_page(const gx_file_gene_recf_t& file, int id, std::int32_t dx, std::int32_t dy,
                        std::int32_t width, std::int32_t height);
gx_pointreal_t gx_inq_object_origin(const gx_file_gene_recf_t& file, int id);

bool gx_inq_grid_state(const gx_file_gene_recf_t& file);
void gx_set_grid_state(const gx_file_gene_recf_t& file, bool on);
std::int32_t gx_inq_grid_step(const gx_file_gene_recf_t& file);
void gx_set_grid_step(const gx_file_gene_recf_t& file, std::int32_t step);
bool gx_inq_snap_state(const gx_file_gene_recf_t& file);
void gx_set_snap_state(const gx_file_gene_recf_t& file, bool on);
