// The snap grid, angles, and the page with its grid object.
#include "gx/db/place/page.h"

#include <cmath>
#include <numbers>

#include "gx/db/file/file_state.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"

gx_pointreal_t gx_round_snap(std::int32_t x, std::int32_t y) {
  const auto round = [](std::int64_t v) {
    const std::int64_t size = std::abs(v);
    const std::int64_t steps = size / gx_snap_step + (size % gx_snap_step > gx_snap_step / 2);
    return gx_saturated((v < 0 ? -steps : steps) * gx_snap_step);
  };
  return {round(x), round(y)};
}

std::int32_t gx_atan(std::int32_t y, std::int32_t x) {
  if (x == 0) return y > 0 ? gx_full_turn / 4 : gx_full_turn * 3 / 4;
  const double angle =
      std::atan(static_cast<double>(y) / x) * (gx_full_turn / 2) / std::numbers::pi;
  const auto a = static_cast<std::int32_t>(std::floor(angle + 0.5));
  const std::int32_t turned = x < 0 ? a + gx_full_turn / 2 : (y < 0 ? a + gx_full_turn : a);
  return turned % gx_full_turn;
}

namespace {

gx_object_grid_rec_t& grid_of(const gx_file_gene_recf_t& file) {
  auto& object = gx_object_id_ptr(file, file.grid_obj_id);
  if (object.object_type != gx_type::grid_2d) gx_set_status(gx_code::page_obj_id_invalid);
  return gx_grid_info_ptr(file, file.grid_obj_id);
}

bool has_grid(const gx_file_gene_recf_t& file) { return file.grid_obj_id > 0; }

}  // namespace

gx_pointreal_t gx_inq_page_dim(const gx_file_gene_recf_t& file) {
  return has_grid(file) ? grid_of(file).opposite_pt : gx_pointreal_t{};
}

void gx_set_page_dim(gx_file_gene_recf_t& file, std::int32_t width, std::int32_t height) {
  auto& grid = grid_of(file);
  grid.gene.origin = {gx_files.origin_page_x, gx_files.origin_page_y};
  grid.gene.bounds = {0, 0, width, height};
  grid.opposite_pt = {width, height};
  for (int id = grid.gene.object_id; gx_object_id_ptr(file, id).father > 0;) {
    const int father = gx_object_id_ptr(file, id).father;
    gx_update_father_bounds(file, id, father);
    id = father;
  }
}

bool gx_check_point_inpage(const gx_file_gene_recf_t& file, std::int32_t x, std::int32_t y) {
  constexpr std::int32_t margin = 500;
  const auto page = gx_inq_page_dim(file);
  const auto inside = [](std::int32_t v, std::int64_t size) {
    return v >= margin && v < size - margin + 1;
  };
  return inside(x, page.x) && inside(y, page.y);
}

bool gx_object_out_page(const gx_file_gene_recf_t& file, int id, std::int32_t dx, std::int32_t dy,
                        std::int32_t width, std::int32_t height) {
  const auto box = gx_move(gx_object_id_ptr(file, id).bounds, {dx, dy});
  return box.xmin < 1 || box.xmax >= width || box.ymin < 1 || box.ymax >= height;
}

gx_pointreal_t gx_inq_object_origin(const gx_file_gene_recf_t& file, int id) {
  return gx_object_id_ptr(file, id).origin;
}

// --- the grid object's switches; a file without one has them off and the least step

bool gx_inq_grid_state(const gx_file_gene_recf_t& file) {
  return has_grid(file) && grid_of(file).grid_on != 0;
}

void gx_set_grid_state(const gx_file_gene_recf_t& file, bool on) {
  if (has_grid(file)) grid_of(file).grid_on = on;
}

std::int32_t gx_inq_grid_step(const gx_file_gene_recf_t& file) {
  return has_grid(file) ? grid_of(file).step_point : gx_snap_step;
}

void gx_set_grid_step(const gx_file_gene_recf_t& file, std::int32_t step) {
  if (has_grid(file)) grid_of(file).step_point = step;
}

bool gx_inq_snap_state(const gx_file_gene_recf_t& file) {
  return has_grid(file) && grid_of(file).snap_on != 0;
}

void gx_set_snap_state(const gx_file_gene_recf_t& file, bool on) {
  if (has_grid(file)) grid_of(file).snap_on = on;
}
