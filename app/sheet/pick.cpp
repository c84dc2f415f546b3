#include "app/sheet/pick.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"

namespace {
bool is_there(const gx_file_gene_recf_t& file, int id) {
  return !gx_inq_object_deleted(file, id) && !gx_inq_object_unvisible(file, id);
}

// An end of a segment: a vertex, or a pin of an instance.
std::optional<gx_pointreal_t> place_of_end(const gx_file_gene_recf_t& file, int end) {
  if (!gx_object_id_ok(file, end) || gx_inq_object_deleted(file, end)) return std::nullopt;
  switch (gx_object_id_ptr(file, end).object_type) {
    case gx_type::vertex_2d:
      return gx_object_abs_origin(file, end, 0);
    case gx_type::pinpropfam:
      return gx_pin_abs_origin(file, end);
    default:
      return std::nullopt;
  }
}

double distance(gx_pointreal_t p, gx_pointreal_t a, gx_pointreal_t b) {
  const double dx = double(b.x) - a.x, dy = double(b.y) - a.y;
  const double px = double(p.x) - a.x, py = double(p.y) - a.y;
  const double length = dx * dx + dy * dy;
  const double t = length > 0 ? std::clamp((px * dx + py * dy) / length, 0.0, 1.0) : 0.0;
  return std::hypot(px - t * dx, py - t * dy);
}
}  // namespace

int kv_pick_instance(const gx_file_gene_recf_t& file, gx_pointreal_t point) {
  int found = 0;
  double smallest = 0;
  for (const int id : lb_instances(file)) {
    if (!is_there(file, id)) continue;
    const gx_boundsreal_t box = gx_object_abs_origin_bounds(file, id, 0).bounds;
    if (point.x < box.xmin || point.x > box.xmax || point.y < box.ymin || point.y > box.ymax)
      continue;
    const double size = (double(box.xmax) - box.xmin) * (double(box.ymax) - box.ymin);
    if (found != 0 && size >= smallest) continue;
    found = id;
    smallest = size;
  }
  return found;
}

int kv_pick_net(const gx_file_gene_recf_t& file, gx_pointreal_t point, std::int32_t room) {
  int found = 0;
  double nearest = room;
  for (const int net : lb_nets(file)) {
    if (!is_there(file, net)) continue;
    for (const int id : lb_segments(file, net)) {
      if (gx_inq_object_deleted(file, id)) continue;
      const auto& segment = gx_segment_info_ptr(file, id);
      const auto a = place_of_end(file, segment.vertex1), b = place_of_end(file, segment.vertex2);
      if (!a || !b) continue;
      const double away = distance(point, *a, *b);
      if (away > nearest || (found != 0 && away == nearest)) continue;
      found = net;
      nearest = away;
    }
  }
  return found;
}
