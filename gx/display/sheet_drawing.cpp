// The frames, instances and nets of a sheet.
#include "gx/display/sheet_drawing.h"

#include "gx/db/picture_walk.h"
#include "gx/display/draw_net.h"
#include "gx/display/draw_object.h"
#include "gx/display/draw_steps.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"
#include "gx/vext.h"

namespace {
void draw_instance(const gx_picture_t& picture, int inst) {
  lb_walk_instance(*picture.file, inst, "LB_DISPLAY_ONE_INST",
                   [&](int root, bool selected) { gx_draw_tree(picture, root, inst, selected); });
}

// Calls `draw` for every member that is not deleted, as one picture.
template <typename Draw>
void draw_members(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode,
                  gx_members (*members)(const gx_file_gene_recf_t&), Draw draw) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const gx_picture_t picture{vpid, file_index, &file, mode};
  lb_walk_members(file, members(file), [&](int id) { draw(picture, id); });
}

bool may_draw(gx_vpid_t vpid) {
  if (!gx_drawing_possible() || !gx_is_seen() || !gx_vext.display_on) return false;
  if (!gx_viewport_rec(vpid).vp_blocked) return true;
  gx_debug(" gx_display_object  : view port blocked : %d\n", vpid);
  gx_set_status(gx_code::viewport_blocked);
}
}  // namespace

void lb_display_one_inst(gx_vpid_t vpid, gx_file_index_t file_index, int inst, gx_draw_mode mode) {
  if (!may_draw(vpid)) return;
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  draw_instance({vpid, file_index, &gx_ptrto_gene_file_buf(file_index), mode}, inst);
}

void lb_display_all_frame(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  if (!may_draw(vpid)) return;
  draw_members(vpid, file_index, mode, lb_frames, [](const gx_picture_t& picture, int frame) {
    gx_draw_tree(picture, frame, 0, gx_inq_object_selected(*picture.file, frame));
  });
}

void lb_display_all_inst(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  if (!may_draw(vpid)) return;
  draw_members(vpid, file_index, mode, lb_instances, draw_instance);
}

void lb_display_all_net(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  if (!may_draw(vpid)) return;
  draw_members(vpid, file_index, mode, lb_nets, gx_draw_net);
}
