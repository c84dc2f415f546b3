// The frames, instances and nets of a sheet; selecting them: their flags and those of all below
// them, shown at once where the sheet is in sight.
#include "gx/display/sheet/sheet_drawing.h"

#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/draw_object.h"
#include "gx/display/strokes/draw_strokes.h"
#include "gx/display/viewports.h"
#include "gx/picture/object_shapes.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/vext.h"

namespace {
bool may_draw(gx_vpid_t vpid) {
  if (!gx_drawing_possible() || !gx_is_seen() || !gx_vext.display_on) return false;
  if (!gx_viewport_rec(vpid).vp_blocked) return true;
  gx_debug(" gx_display_object  : view port blocked : %d\n", vpid);
  gx_set_status(gx_code::viewport_blocked);
}

// Calls `shapes` for the sheet with the sink of the viewport, as one picture.
template <typename Shapes>
void draw_sheet(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode, Shapes shapes) {
  if (!may_draw(vpid)) return;
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const gx_picture_t picture{vpid, file_index, &file, mode};
  shapes(file, gx_screen_sink(picture));
}

using flag_setter_t = void (*)(const gx_file_gene_recf_t& file, int id, bool on);

// Depth first over the object and all below it; symbols nest a few levels deep.
void set_tree(const gx_file_gene_recf_t& file, int id, flag_setter_t set, bool on) {
  set(file, id, on);
  for (const int child : gx_children(file, id)) set_tree(file, child, set, on);
}

// Draws an object again in every picture of its file.
template <typename Draw>
void show(gx_file_index_t file_index, Draw draw) {
  if (!gx_drawing_possible() || !gx_vext.display_on) return;
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const gx_batch_t batch;
  for (int vpid = 1; vpid <= gx_vext.viewport_id_max; ++vpid) {
    const auto& vp = gx_viewport_rec(vpid);
    if (vp.file_index != file_index || vp.vp_blocked || !gx_is_picture_viewport(vpid)) continue;
    const auto id = static_cast<gx_vpid_t>(vpid);
    gx_viewport_select(id);
    draw(gx_picture_t{id, file_index, &file, gx_draw_mode::draw});
  }
}

void set_inst(gx_file_index_t file_index, int inst, bool on) {
  set_tree(gx_ptrto_gene_file_buf(file_index), inst, gx_set_object_selected, on);
  show(file_index, [&](const gx_picture_t& picture) {
    lb_display_one_inst(picture.vpid, file_index, inst, gx_draw_mode::draw);
  });
}

void set_frame(gx_file_index_t file_index, int frame, bool on) {
  set_tree(gx_ptrto_gene_file_buf(file_index), frame, gx_set_object_selected, on);
  show(file_index, [&](const gx_picture_t& picture) {
    gx_tree_shapes(*picture.file, frame, 0, on, gx_screen_sink(picture));
  });
}

void set_net(gx_file_index_t file_index, int net, bool on) {
  set_tree(gx_ptrto_gene_file_buf(file_index), net, gx_set_object_selected, on);
  show(file_index, [&](const gx_picture_t& picture) {
    gx_net_shapes(*picture.file, net, gx_screen_sink(picture));
  });
}
}  // namespace

void lb_display_one_inst(gx_vpid_t vpid, gx_file_index_t file_index, int inst, gx_draw_mode mode) {
  draw_sheet(vpid, file_index, mode, [&](const auto& file, const gx_sink_t& sink) {
    lb_instance_shapes(file, inst, sink);
  });
}

void lb_display_all_frame(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  draw_sheet(vpid, file_index, mode, lb_frame_shapes);
}

void lb_display_all_inst(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  draw_sheet(vpid, file_index, mode, lb_all_instance_shapes);
}

void lb_display_all_net(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  draw_sheet(vpid, file_index, mode, lb_all_net_shapes);
}

void lb_select_inst_prim(gx_file_index_t file_index, int inst) { set_inst(file_index, inst, true); }

void lb_unselect_inst_prim(gx_file_index_t file_index, int inst) {
  set_inst(file_index, inst, false);
}

void lb_select_frame_prim(gx_file_index_t file_index, int frame) {
  set_frame(file_index, frame, true);
}

void lb_unselect_frame_prim(gx_file_index_t file_index, int frame) {
  set_frame(file_index, frame, false);
}

void lb_select_net(gx_file_index_t file_index, int net) { set_net(file_index, net, true); }

void lb_unselect_net(gx_file_index_t file_index, int net) { set_net(file_index, net, false); }

void lb_delete_symbol_prim(gx_file_index_t file_index, int symbol) {
  set_tree(gx_ptrto_gene_file_buf(file_index), symbol, gx_set_object_deleted, true);
}
