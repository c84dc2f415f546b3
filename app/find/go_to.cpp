#include "app/find/go_to.h"

#include <algorithm>

#include "app/sheet/views.h"
#include "app/sheet/walk.h"
#include "app/state.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/place/geometry.h"
#include "gx/db/undo.h"
#include "gx/display/viewports.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

// What is shown around an object: so much at least, so that its surroundings are seen, and so much
// at most, so that texts can be read. Design units.
struct room_t {
  std::int32_t width, height;
};
constexpr room_t least{300000, 180000}, most{1000000, 600000};

// How many levels of the way are those of the sheet in view and above it.
std::size_t levels_in_common(const kv_way_t& way) {
  std::string_view here = gx_view(kv_pext.cur_sim_path);
  if (here.starts_with('/')) here.remove_prefix(1);
  std::size_t common = 0;
  for (std::string walked; common < way.size(); ++common) {
    const auto& step = way[common];
    walked += step.name + "/";
    const int level = static_cast<int>(common) + 2;
    if (level > kv_pext.file_level_cur || !gx_iden(here.substr(0, walked.size()), walked) ||
        !gx_iden(gx_view(kv_at_level(level).file_path), gx_view(step.directory)))
      break;
  }
  return common;
}

gx_string_record_t path_of(const kv_way_t& way, std::size_t steps) {
  gx_string_record_t path;
  if (gx_view(kv_pext.cur_sim_path).starts_with('/')) path = gx_string("/");
  for (std::size_t i = 0; i < steps; ++i) gx_concat_all(path, way[i].name, "/");
  return path;
}

// Walks up and down to the end of the way; the sheets between are not drawn.
std::string walk(const kv_way_t& way) {
  std::size_t steps = levels_in_common(way);
  std::string fault;
  for (; fault.empty() && steps < way.size(); ++steps) {
    const int level = static_cast<int>(steps) + 2;
    const auto open = kv_open_level(level, way[steps].directory);
    if (open.opened != kv_opened::yes)
      fault = std::string(gx_view(way[steps].directory)) +
              "/sheet.gx : " + (open.why.empty() ? "not found" : open.why);
  }
  if (!fault.empty()) --steps;
  kv_stand_at(static_cast<int>(steps) + 1, path_of(way, steps));
  return fault;
}

// The first segment of a net that is too large to be seen whole.
gx_boundsreal_t part_of_net(const gx_file_gene_recf_t& file, int net, gx_boundsreal_t whole) {
  for (const int id : lb_segments(file, net)) {
    if (gx_inq_object_deleted(file, id)) continue;
    const gx_boundsreal_t part = gx_object_abs_origin_bounds(file, id, 0).bounds;
    if (!gx_bounds_empty(part)) return part;
  }
  return whole;
}

gx_boundsreal_t box_of(const gx_file_gene_recf_t& file, int id) {
  const gx_type type = gx_object_id_ptr(file, id).object_type;
  const auto placed = type == gx_type::pinpropfam ? gx_pin_abs_origin_bounds(file, id)
                                                  : gx_object_abs_origin_bounds(file, id, 0);
  gx_boundsreal_t box = placed.bounds;
  if (gx_bounds_empty(box))
    box = {placed.origin.x, placed.origin.y, placed.origin.x, placed.origin.y};
  const bool is_large = std::int64_t{box.xmax} - box.xmin > most.width ||
                        std::int64_t{box.ymax} - box.ymin > most.height;
  return type == gx_type::net && is_large ? part_of_net(file, id, box) : box;
}

// Shows a box in the middle, with room around it.
void show_around(const gx_boundsreal_t& box) {
  const auto room = [](std::int64_t size, std::int32_t at_least, std::int32_t at_most) {
    return std::clamp<std::int64_t>(size * 3 / 2, at_least, at_most) / 2;
  };
  const std::int64_t x = (std::int64_t{box.xmin} + box.xmax) / 2;
  const std::int64_t y = (std::int64_t{box.ymin} + box.ymax) / 2;
  const std::int64_t dx = room(std::int64_t{box.xmax} - box.xmin, least.width, most.width);
  const std::int64_t dy = room(std::int64_t{box.ymax} - box.ymin, least.height, most.height);
  kv_display_picture_area(gx_vext.viewport_edit, kv_pext.file_id_cur,
                          {gx_saturated(x - dx), gx_saturated(y - dy)},
                          {gx_saturated(x + dx), gx_saturated(y + dy)});
}

void select_only(const gx_file_gene_recf_t& file, int object_id) {
  gx_undo_define_new_step();
  for (int id = 1; id <= file.object_id_max; ++id)
    if (gx_inq_object_selected(file, id)) gx_set_object_selected(file, id, false);
  // With all that is below it, as SELect OBJect does.
  const auto select = [&](const auto& self, int id) -> void {
    gx_set_object_selected(file, id, true);
    for (const int child : gx_children(file, id)) self(self, child);
  };
  select(select, object_id);
}

bool can_be_shown(const gx_file_gene_recf_t& file, int id) {
  constexpr gx_type shown[] = {gx_type::instance,   gx_type::net,       gx_type::frame,
                               gx_type::pinpropfam, gx_type::vertex_2d, gx_type::segment,
                               gx_type::property_2d};
  const auto* object = gx_object(file, id);
  return object != nullptr && !gx_is_deleted(*object) &&
         std::ranges::find(shown, object->object_type) != std::end(shown);
}

std::string no_sheet(std::string_view path) {
  return "no such sheet : \"" + std::string(path) + "\"";
}
std::string no_object(int object_id) { return "no such object : " + std::to_string(object_id); }

}  // namespace

std::string kv_go_along(kv_drawings_t& drawings, const kv_way_t& way, int object_id) {
  const auto* sheet = drawings.top();
  for (const auto& step : way) {
    if (sheet != nullptr) sheet = drawings.below(*sheet, step.inst);
  }
  if (sheet == nullptr) return "no such sheet";
  if (object_id != 0 && !can_be_shown(*sheet, object_id)) return no_object(object_id);
  kv_remember_view();
  if (std::string fault = walk(way); !fault.empty()) {
    kv_show_level();
    return fault;
  }
  kv_show_title();
  const auto& file = gx_ptrto_gene_file_buf(kv_pext.file_id_cur);
  if (object_id == 0 || !can_be_shown(file, object_id)) {
    kv_show_level();
    return object_id == 0 ? "" : no_object(object_id);
  }
  select_only(file, object_id);
  show_around(box_of(file, object_id));
  kv_update_viewport_context();  // it may show the same sheet
  return "";
}

std::string kv_go_back(const kv_last_view_t& view) {
  kv_drawings_t drawings;
  const std::string_view path = gx_view(view.path);
  const auto way = kv_way_to(drawings, path);
  if (!way) return no_sheet(path);
  std::string fault = walk(*way);
  const auto vpid = gx_vext.viewport_edit;
  if (!fault.empty() || !gx_viewport_ok(vpid)) {
    kv_show_level();
    return fault;
  }
  kv_display_picture_shown(vpid, kv_pext.file_id_cur, view.shown);
  kv_show_title();
  return "";
}

std::string kv_go_to(std::string_view sheet_path, int object_id) {
  kv_drawings_t drawings;
  const auto way = kv_way_to(drawings, sheet_path);
  if (!way) return no_sheet(sheet_path);
  return kv_go_along(drawings, *way, object_id);
}
