// The frames, instances and nets of a sheet.
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/display/draw_steps.h"
#include "gx/display/viewports.h"
#include "gx/text/debug.h"
#include "gx/text/status.h"

namespace {
bool is_deleted(const gx_file_gene_recf_t& file, int id) {
  return (gx_object_id_ptr(file, id).status & gx_flag_deleted) != 0;
}

bool is_selected(const gx_file_gene_recf_t& file, int id) {
  return (gx_object_id_ptr(file, id).status & gx_flag_selected) != 0;
}

// An object of the sheet whose id and type are sound.
void check_object(const gx_file_gene_recf_t& file, int id, gx_type type, const char* id_name,
                  const char* type_name) {
  if (!gx_object_id_ok(file, id)) {
    gx_debug(" LB_DISPLAY_ONE_INST : %s %d\n", id_name, id);
    gx_set_status(gx_code::object_id_invalid);
  }
  const gx_type found = gx_object_id_ptr(file, id).object_type;
  if (found == type) return;
  const auto name = gx_type_name(found);
  gx_debug(" LB_DISPLAY_ONE_INST : %s : type : %15.*s\n", type_name, static_cast<int>(name.size()),
           name.data());
  gx_set_status(gx_code::object_type_invalid);
}

// The symbol's texts, but for those that the instance has a property of its own for.
void draw_symbol_texts(const gx_picture_t& picture, int family, int inst, int own_properties) {
  const auto& file = *picture.file;
  for (const int id : gx_children(file, family)) {
    if (gx_object_id_ptr(file, id).object_type != gx_type::property_2d) continue;
    const auto name = gx_view(gx_property_info_ptr(file, id).name);
    if (own_properties > 0 && gx_find_property_name(file, own_properties, name) > 0) continue;
    gx_draw_prim(picture, id, inst, is_selected(file, inst));
  }
}

void draw_instance(const gx_picture_t& picture, int inst) {
  const auto& file = *picture.file;
  check_object(file, inst, gx_type::instance, "obj_inst_id :", "instance");
  const int symbol = gx_instance_info_ptr(file, inst).symbol;
  check_object(file, symbol, gx_type::symbol, "symbol_id", "symbol");
  if (is_deleted(file, symbol)) {
    gx_debug(" LB_DISPLAY_ONE_INST : deleted: symbol_id %d\n", symbol);
    gx_set_status(gx_code::object_id_invalid);
  }
  const int properties = lb_inq_inst_child_id(file, inst).bodpropfam;
  const int body = lb_inq_symbol_child_id(file, symbol).body;
  if (body > 0) {
    const auto [graphics, texts] = lb_inq_graphics_property_id(file, body);
    if (graphics > 0) gx_draw_tree(picture, graphics, inst, is_selected(file, inst));
    if (texts > 0) draw_symbol_texts(picture, texts, inst, properties);
  }
  for (auto pins = lb_inq_inst_first_pin_id(file, inst); pins;
       pins = lb_inq_inst_next_pin_id(file, pins)) {
    if (is_deleted(file, pins.pinpropfam)) continue;
    const bool selected = is_selected(file, pins.pinpropfam) || is_selected(file, pins.pin);
    gx_draw_tree(picture, pins.pinpropfam, inst, selected);
    gx_draw_tree(picture, pins.pin, inst, selected);
  }
  if (properties > 0) gx_draw_tree(picture, properties, inst, false);
}

// Calls `draw` for every member that is not deleted, as one picture.
template <typename Draw>
void draw_members(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode, int first,
                  Draw draw) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const gx_batch_t batch;
  gx_viewport_select(vpid);
  const gx_picture_t picture{vpid, file_index, &file, mode};
  for (const int id : gx_siblings(file, first))
    if (!is_deleted(file, id)) draw(picture, id);
}

bool may_draw(gx_vpid_t vpid) {
  if (!gx_drawing_possible() || !gx_vext.display_on) return false;
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
  const int first = lb_inq_first_frame_id(gx_ptrto_gene_file_buf(file_index)).member;
  draw_members(vpid, file_index, mode, first, [](const gx_picture_t& picture, int frame) {
    gx_draw_tree(picture, frame, 0, is_selected(*picture.file, frame));
  });
}

void lb_display_all_inst(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  if (!may_draw(vpid)) return;
  const int first = lb_inq_first_inst_id(gx_ptrto_gene_file_buf(file_index)).member;
  draw_members(vpid, file_index, mode, first, draw_instance);
}

void lb_display_all_net(gx_vpid_t vpid, gx_file_index_t file_index, gx_draw_mode mode) {
  if (!may_draw(vpid)) return;
  const int first = lb_inq_first_net_id(gx_ptrto_gene_file_buf(file_index)).member;
  draw_members(vpid, file_index, mode, first, gx_draw_net);
}
