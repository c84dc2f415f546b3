// The pictures of the edit and context viewports, drawn from the open files.
#include "app/sheet/views.h"

#include "app/state.h"
#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/draw.h"
#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/offscreen.h"
#include "gx/display/strokes/pen.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/text/arguments.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

kv_sheet_overlay_t sheet_overlay = nullptr;
kv_context_picture_t context_picture = nullptr;

// The grid object of a sheet, whose box is the page.
int grid_of(const gx_file_gene_recf_t& file, const char* message) {
  const int grid = gx_object_inq_grid_id(file);
  if (gx_object_id_ok(file, grid)) return grid;
  gx_debug(message, grid);
  gx_set_status(gx_code::file_data_invalid);
}

// The grid at the scale asked for, then all that is on the sheet.
void draw_sheet(gx_vpid_t vpid, gx_file_index_t file_index, int grid, bool keep_scale) {
  const gx_batch_t batch;
  gx_display_object(vpid, file_index, grid, 0, keep_scale, gx_draw_mode::draw, false);
  lb_display_all_frame(vpid, file_index, gx_draw_mode::draw);
  lb_display_all_inst(vpid, file_index, gx_draw_mode::draw);
  lb_display_all_net(vpid, file_index, gx_draw_mode::draw);
  if (sheet_overlay != nullptr) sheet_overlay(vpid, file_index);
  gx_display_half_cross(vpid, gx_vext.base_point);
  gx_display_kept_marks(vpid);
}

// What the kv_display_picture functions share. `place` has the viewport show a part of the sheet,
// given its page.
template <typename Place>
void show_part(gx_vpid_t vpid, gx_file_index_t file_index, Place place, const char* bad_file,
               const char* bad_grid) {
  if (!gx_vext.display_on || !gx_drawing_possible()) return;
  if (file_index < 1 ||
      (file_index != kv_pext.file_id_cur && file_index != kv_pext.file_id_context)) {
    gx_debug(bad_file, file_index);
    gx_set_status(gx_code::file_data_invalid);
  }
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const int grid = grid_of(file, bad_grid);
  gx_forget_marks(vpid);
  place(gx_object_abs_origin_bounds(file, grid, 0).bounds);
  const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
  gx_clear_viewport(vpid);
  draw_sheet(vpid, file_index, grid, true);
}

void redraw_edit(bool keep_scale, const char* bad_grid, const char* bad_file) {
  const gx_vpid_t vpid = gx_vext.viewport_edit;
  if (!gx_vext.display_on || !gx_drawing_possible() || !gx_viewport_ok(vpid)) return;
  const gx_file_index_t file_index = gx_viewport_rec(vpid).file_index;
  if (file_index < 1 || file_index != kv_pext.file_id_cur) {
    gx_debug_line(bad_file);
    return;
  }
  const int grid = grid_of(gx_ptrto_gene_file_buf(file_index), bad_grid);
  const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
  gx_clear_viewport(vpid);
  draw_sheet(vpid, file_index, grid, keep_scale);
}

// A symbol file: its picture and a cross at the origin of each component.
void draw_symbol(gx_vpid_t vpid, gx_file_index_t file_index, bool keep_scale) {
  const auto& file = gx_ptrto_gene_file_buf(file_index);
  const int primary = gx_file_inq_primary_object(file);
  if (!gx_object_id_ok(file, primary)) gx_set_status(gx_code::object_id_invalid);
  const gx_batch_t batch;
  gx_display_object(vpid, file_index, primary, 0, keep_scale, gx_draw_mode::draw, false);
  kv_cross_components(vpid, file, gx_display_cross);
  gx_display_half_cross(vpid, gx_vext.base_point);
  gx_display_kept_marks(vpid);
}

void redraw_context(bool keep_scale, const char* bad_grid, const char* bad_file) {
  const gx_vpid_t vpid = gx_vext.viewport_context;
  if (!gx_vext.display_on || !gx_drawing_possible() || !gx_viewport_ok(vpid)) return;
  if (context_picture != nullptr) {
    const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
    gx_clear_viewport(vpid);
    return context_picture(vpid);
  }
  const gx_file_index_t file_index = gx_viewport_rec(vpid).file_index;
  if (file_index < 1 || file_index != kv_pext.file_id_context) {
    gx_debug(bad_file, file_index);
    return;
  }
  const bool is_symbol = file_index == kv_pext.file_id_act;
  const int grid = is_symbol ? 0 : grid_of(gx_ptrto_gene_file_buf(file_index), bad_grid);
  const gx_offscreen_t picture(gx_viewport_rec(vpid).pixel_bounds);
  gx_clear_viewport(vpid);
  if (is_symbol)
    draw_symbol(vpid, file_index, keep_scale);
  else
    draw_sheet(vpid, file_index, grid, keep_scale);
}

constexpr std::size_t most_views = 20;

kv_last_view_t present() {
  const auto vpid = gx_vext.viewport_edit;
  return {kv_pext.cur_sim_path, gx_viewport_ok(vpid) ? gx_viewport_shown(vpid) : gx_shown_t{}};
}

// RUN puts a "/" before the path of the sheet in view.
std::string_view names(const gx_string_record_t& path) {
  std::string_view text = gx_view(path);
  if (text.starts_with('/')) text.remove_prefix(1);
  return text;
}

bool is_same(const kv_last_view_t& a, const kv_last_view_t& b) {
  return gx_iden(names(a.path), names(b.path)) && a.shown == b.shown;
}

}  // namespace

std::array<gx_viewport_init_rec_t, 4> set_viewports() {
  constexpr gx_border_info border{
      .pixel_width = 1, .reserved = 0, .border_color = 3, .background_color = 0};
  return {{{{400, 500, 99600, 74900}, border},        // the sheet being worked on
           {{400, 95500, 73300, 99500}, border},      // the command line
           {{400, 75400, 73300, 95000}, border},      // the message list
           {{73700, 75400, 99600, 99500}, border}}};  // the context sheet or a symbol
}

void kv_set_view_roles() { static_cast<gx_view_roles_t&>(gx_vext) = kv_view_roles; }

void kv_frame_active(gx_vpid_t vpid) {
  const int width = gx_theme().has_roles ? 1 : 3;
  gx_draw_new_viewport_border(vpid, width, gx_color_of(gx_role::active_pane, 6));
}

void kv_frame_quiet(gx_vpid_t vpid) {
  gx_draw_new_viewport_border(vpid, 1, gx_color_of(gx_role::pane, 3));
}

void kv_display_picture_all(gx_vpid_t vpid, gx_file_index_t file_index) {
  show_part(
      vpid, file_index, [&](const gx_boundsreal_t& page) { gx_viewport_fit(vpid, page); },
      " KV_DISPLAY_PICTURE_ALL : file index (invalid) : %12d\n",
      " KV_DISPLAY_PICTURE_ALL : grid_id (invalid) : %12d\n");
}

void kv_display_picture_area(gx_vpid_t vpid, gx_file_index_t file_index, gx_pointreal_t p1,
                             gx_pointreal_t p2) {
  show_part(
      vpid, file_index, [&](const gx_boundsreal_t&) { gx_viewport_fit(vpid, gx_area_of(p1, p2)); },
      " KV_DISPLAY_PICTURE_AREA : file index (invalid) : %12d\n",
      " KV_DISPLAY_PICTURE_AREA : grid_id (invalid) : %12d\n");
}

void kv_display_picture_shown(gx_vpid_t vpid, gx_file_index_t file_index, const gx_shown_t& shown) {
  show_part(
      vpid, file_index, [&](const gx_boundsreal_t&) { gx_viewport_show(vpid, shown); },
      " KV_DISPLAY_PICTURE_SHOWN : file index (invalid) : %12d\n",
      " KV_DISPLAY_PICTURE_SHOWN : grid_id (invalid) : %12d\n");
}

void kv_set_sheet_overlay(kv_sheet_overlay_t overlay) { sheet_overlay = overlay; }
void kv_set_context_picture(kv_context_picture_t picture) { context_picture = picture; }

void kv_update_viewport_edit() {
  redraw_edit(true, " KV_UPDATE_VIEWPORT_EDIT  : grid_id invalid  \n",
              " KV_UPDATE_VIEWPORT_EDIT : INVALID file index  ");
}

void kv_expose_viewport_edit() {
  redraw_edit(false, " KV_EXPOSE_VIEWPORT_EDIT  : grid_id invalid  \n",
              " KV_EXPOSE_VIEWPORT_EDIT : INVALID file index  ");
}

void kv_update_viewport_context() {
  redraw_context(true, " KV_UPDATE_VIEWPORT_CONTEXT  : grid_id invalid  \n",
                 " KV_UPDATE_VIEWPORT_CONTEXT : INVALID file index : %12d\n");
}

void kv_expose_viewport_context() {
  redraw_context(false, " KV_EXPOSE_VIEWPORT_CONTEXT  : grid_id invalid  \n",
                 " KV_EXPOSE_VIEWPORT_CONTEXT : INVALID file index : %12d\n");
}

void kv_update_basept_edit_cmd() {
  for (const gx_vpid_t vpid : {gx_vext.viewport_edit, gx_vext.viewport_context}) {
    if (!gx_drawing_possible() || !gx_viewport_ok(vpid)) continue;
    gx_viewport_select(vpid);
    gx_display_half_cross(vpid, gx_vext.base_point);
  }
}

void kv_show_title() {
  gx_string_record_t design, title = gx_string("kivo  ");
  gx_get_arg(2, design);
  gx_concat_line(design, title);
  // RUN puts a "/" before the path of the sheet in view.
  std::string_view names = gx_view(kv_pext.cur_sim_path);
  if (names.starts_with('/')) names.remove_prefix(1);
  if (names.ends_with('/')) names.remove_suffix(1);
  if (!names.empty()) gx_concat_all(title, " /", names);
  gx_set_title(gx_view(title));
}

void kv_cross_components(gx_vpid_t vpid, const gx_file_gene_recf_t& file,
                         void (*put)(gx_vpid_t vpid, gx_pointreal_t p)) {
  for (const int component : wn_components(file))
    if (!gx_inq_object_deleted(file, component))
      put(vpid, gx_object_abs_origin(file, component, 0));
}

void kv_remember_view() {
  auto& views = kv_pext.last_views;
  views.push_back(present());
  if (views.size() > most_views) views.erase(views.begin());
}

std::optional<kv_last_view_t> kv_take_last_view() {
  auto& views = kv_pext.last_views;
  const auto now = present();
  while (!views.empty()) {
    const auto view = views.back();
    views.pop_back();
    if (!is_same(view, now)) return view;
  }
  return std::nullopt;
}
