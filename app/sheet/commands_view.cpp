// What the two viewports show: VIEw SHEet, ACTivate SYMbol, POP, VIEw ALL and VIEw AREa.
#include <cstdlib>
#include <string>

#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/views.h"
#include "app/sheet/walk.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/draw.h"
#include "gx/display/viewports.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

// The file that word 3 names, under the SEArch path when there is one.
gx_string_record_t searched_path(const kv_command_t& command) {
  gx_string_record_t path;
  if (kv_pext.search_done) gx_concat_all(path, gx_view(kv_pext.search_path), "/");
  gx_concat_const(kv_file_name(command.word(3)), path);
  return path;
}

// Refuses with the error, the path in quotes after it, and what is wrong with a damaged file.
void refuse_file(std::string_view keyword, const kv_command_t& command, std::string_view error,
                 const gx_string_record_t& path, const std::string& why) {
  kv_echo(keyword, command, 3);
  gx_tell_as(gx_line_kind::error, error, "\"", gx_view(path), "\" ");
  if (!why.empty()) gx_tell_detail("# !! ", why);
}

void show_in_context(gx_file_index_t file_index) {
  kv_pext.file_id_context = file_index;
  kv_display_picture_all(gx_vext.viewport_context, file_index);
}

void show_activated_symbol(bool marked_area_only) {
  kv_pext.file_id_context = kv_pext.file_id_act;
  const auto vpid = gx_vext.viewport_activ;
  if (marked_area_only) {
    gx_display_picture_area(vpid, kv_pext.file_id_act, kv_pext.pt_pic_area1, kv_pext.pt_pic_area2);
  } else {
    gx_display_picture_all(vpid, kv_pext.file_id_act);
  }
  kv_cross_components(vpid, gx_ptrto_gene_file_buf(kv_pext.file_id_act), gx_keep_cross);
}

void kv_view_sheet_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VIEw SHEet ";
  const auto path = searched_path(command);
  const bool reopened = kv_pext.file_id_views != 0;
  std::string why;
  if (kv_open_in_slot(kv_pext.file_id_views, gx_view(path), "sheet", why) != kv_opened::yes) {
    kv_pext.view_sheet_done = false;
    return refuse_file(refused, command,
                       reopened ? "# !! Error : Sheet not found ? : "
                                : "# !! Error : Sheet not found or Invalid ? : ",
                       path, why);
  }
  const auto& file = gx_ptrto_gene_file_buf(kv_pext.file_id_views);
  why = gx_sheet_fault(file);
  if (!why.empty()) {
    if (file.primary_object == 0) why.clear();
    kv_pext.view_sheet_done = false;
    kv_leave_slot(kv_pext.file_id_views);
    return refuse_file(refused, command, "# !! Error : No Sheet Available ? : ", path, why);
  }
  gx_hide_invisible(gx_ptrto_gene_file_buf(kv_pext.file_id_views));
  kv_pext.view_sheet_done = true;
  kv_follow_sheet();
  show_in_context(kv_pext.file_id_views);
  kv_echo(" VIEw SHEet ", command, 3);
}

void kv_activate_symbol_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# ACTivate SYMbol ";
  const auto path = searched_path(command);
  kv_pext.act_symb_done = false;
  std::string why;
  const auto refuse = [&](std::string_view error, bool with_path) {
    kv_leave_slot(kv_pext.file_id_act);
    if (with_path) return refuse_file(refused, command, error, path, why);
    kv_refuse(refused, command, error, 3);
  };
  if (kv_open_in_slot(kv_pext.file_id_act, gx_view(path), "symbol", why) != kv_opened::yes) {
    return refuse("# !! Error : Component not found ? : ", true);
  }
  const auto& file = gx_ptrto_gene_file_buf(kv_pext.file_id_act);
  if (!gx_object_id_ok(file, file.primary_object)) {
    return refuse("# !! Error : No Symbol Available ? : ", true);
  }
  const int component = wn_components(file).first();
  if (component == 0) return refuse("# !! Error : No Symbol Available ? ", false);
  if (wn_inq_comp_child_id(file, component).body == 0) {
    return refuse("# !! Error : property with value is not Available ? ", false);
  }
  gx_hide_invisible(gx_ptrto_gene_file_buf(kv_pext.file_id_act));
  kv_pext.act_symb_done = true;
  kv_pext.act_symb_id = static_cast<gx_object_id_t>(component);
  kv_pext.act_file_path = path;
  show_activated_symbol(false);
  kv_echo(" ACTivate SYMbol ", command, 3);
}

void kv_pop_cmd(const kv_command_t& command) {
  if (!kv_pext.view_sheet_done && !kv_pext.act_symb_done) {
    return kv_refuse("# POP ", command, "# !! Error : NO window to pop ? ");
  }
  const auto shown = kv_pext.file_id_context;
  if (shown == kv_pext.file_id_cur) {
    if (kv_pext.act_symb_done) {
      show_activated_symbol(kv_pext.disp_pic_area);
    } else {
      show_in_context(kv_pext.file_id_views);
    }
  } else if (shown == kv_pext.file_id_act) {
    show_in_context(kv_pext.view_sheet_done ? kv_pext.file_id_views : kv_pext.file_id_cur);
  } else if (shown == kv_pext.file_id_views) {
    show_in_context(kv_pext.file_id_cur);
  } else {
    return;
  }
  gx_tell(" POP ");
}

void kv_view_all_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VIEw ALL ";
  const auto view = command.count() == 3 ? kv_view_named(command.word(3)) : kv_edit_view();
  if (!view) return kv_refuse(refused, command, kv_3rd_not_edit_context, 3);
  if (!view->has_sheet()) return kv_refuse(refused, command, kv_no_sheet, 3);
  if (!gx_viewport_ok(view->vpid)) return kv_refuse(refused, command, kv_invalid_viewport, 3);
  kv_pext.disp_pic_area = false;
  if (view->is_edit()) kv_remember_view();
  if (view->is_symbol()) {
    gx_display_picture_all(view->vpid, view->file_index);
    kv_cross_components(view->vpid, view->file(), gx_keep_cross);
  } else {
    kv_display_picture_all(view->vpid, view->file_index);
  }
  gx_keep_cross(view->vpid, gx_vext.obj_pos);
  gx_tell(" VIEw ALL ");
}

// The mouse has not moved between the corners: a click that was no drag.
bool is_no_drag() {
  const auto is_near = [](gx_point16_t corner) {
    constexpr int least = 4;
    return std::abs(gx_vext.pixel_pos.x - corner.x) < least &&
           std::abs(gx_vext.pixel_pos.y - corner.y) < least;
  };
  return is_near(gx_vext.pixel_mark) || is_near(gx_vext.pixel_ptr1);
}

void kv_view_area_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# VIEw AREa ";
  const bool was_marked = kv_pext.mark_rect_done;
  kv_pext.mark_rect_done = false;
  const bool typed = command.count() == 7;
  const kv_view_answers_t answers = {
      .bad_word = typed ? "# !! Error : Invalid Viewport name ( should be Edit/Context) ? "
                        : "# !! Error : Invalid Viewport name (should be Edit/Context) ? "};
  const auto view = kv_wanted_view(refused, command, 3, answers);
  if (!view) return;
  const auto area = kv_wanted_area(refused, command, 4, view->file());
  if (!area) return;
  if (was_marked && !typed && is_no_drag()) return gx_tell(" VIEw AREa ", view->name());
  if (view->is_edit()) kv_remember_view();
  if (view->is_symbol()) {
    gx_display_picture_area(view->vpid, view->file_index, area->p1, area->p2);
    kv_cross_components(view->vpid, view->file(), gx_keep_cross);
  } else {
    kv_pext.disp_pic_area = true;
    kv_pext.pt_pic_area1 = area->p1;
    kv_pext.pt_pic_area2 = area->p2;
    kv_display_picture_area(view->vpid, view->file_index, area->p1, area->p2);
  }
  gx_tell(" VIEw AREa ", view->name());
}

constexpr kv_command_row_t view_rows[] = {
    // clang-format off
    {{"ACT", "SYM"}, "ACTivate SYMbol path", kv_activate_symbol_cmd, "# ACTivate SYMbol ", 3},
    {{"POP"}, "POP", kv_pop_cmd, "# POP "},
    {{"VIE", "AL"}, "VIEw ALL [Edit or Context]", kv_view_all_cmd, "# VIEw ALL ", 3},
    {.keywords = {"VIE", "AR"}, .syntax = "VIEw AREa [Edit [x1 y1 x2 y2]]", .handler = kv_view_area_cmd, .refusal = "# VIEw ARea ", .first_echoed = 3, .ends_rectangle = true},
    {{"VIE", "SHE"}, "VIEw SHEet path", kv_view_sheet_cmd, "# VIEw SHEet ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_view_commands() { return view_rows; }
