// Pins: small diamonds.
#include <array>

#include "gx/db/geometry.h"
#include "gx/db/object_access.h"
#include "gx/display/draw_steps.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

namespace {
constexpr int pin_color = 1;
}

void gx_draw_pin(const gx_picture_t& picture, int pin_id, int inst_id, bool force_selected) {
  const auto& file = *picture.file;
  const auto& pin = gx_object_id_ptr(file, pin_id);
  if (pin.object_type != gx_type::pin) {
    const auto name = gx_type_name(pin.object_type);
    gx_debug(" gx_display_pin  :  file_index : %d    obj_id : %d\n  type : %15.*s\n",
             picture.file_index, pin_id, static_cast<int>(name.size()), name.data());
    gx_set_status(gx_code::object_type_invalid);
  }
  if ((pin.status & (gx_flag_deleted | gx_flag_unvisible)) != 0) return;
  if (gx_viewport_rec(picture.vpid).vp_blocked) return;
  if (!gx_part_object_inside_vp_bounds(picture.vpid, file, pin_id, inst_id)) return;

  const gx_pointreal_t origin = gx_object_abs_origin(file, pin_id, inst_id);
  const bool selected = force_selected || (pin.status & gx_flag_selected) != 0;
  const std::int32_t d = gx_vext.dim_pin;
  std::array<gx_point16_t, 5> diamond;
  const std::array<gx_pointreal_t, 4> corners{{{-d, 0}, {0, d}, {d, 0}, {0, -d}}};
  for (std::size_t i = 0; i < corners.size(); ++i)
    diamond[i] = gx_viewport_pt_real_to_pixel(
        picture.vpid, gx_viewport_dpt_obj2d_inst(file, inst_id, origin, corners[i]));
  diamond[4] = diamond[0];
  gx_draw_polyline(picture.vpid, gx_drawn_color(picture, pin_color, selected), 0, diamond);
}

void gx_display_pin(gx_vpid_t vpid, gx_file_index_t file_index, int pin_id, int inst_id,
                    gx_draw_mode mode, bool force_selected) {
  if (!gx_drawing_possible()) return;
  const auto picture = gx_picture_of(vpid, file_index, pin_id, mode, "gx_display_pin");
  const gx_batch_t batch;
  gx_draw_pin(picture, pin_id, inst_id, force_selected);
}
