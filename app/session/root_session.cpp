#include "app/session/root_session.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "app/language/do_file.h"
#include "app/session/input/event_loop.h"
#include "app/sheet/views.h"
#include "app/state.h"
#include "expand/output/design_file.h"
#include "expand/store.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/db/place/geometry.h"
#include "gx/db/undo.h"
#include "gx/display/input/cursor.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/screen_state.h"
#include "gx/display/sheet/draw.h"
#include "gx/display/viewports.h"
#include "gx/display/window.h"
#include "gx/text/arguments.h"
#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/messages/status.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"
#include "platform/files.h"
#include "platform/stop_signals.h"

namespace {
constexpr std::int16_t lines_in_view = 7;
constexpr std::string_view sheet_type = "sheet";
constexpr float default_time_step = 0.1F;
constexpr char fence[] = "@@@@@@@@@@@@@@@@@@@@@@@@@@";

gx_string_record_t design_file(std::string_view name) {
  gx_string_record_t path;
  gx_get_arg(2, path);
  gx_concat_const(name, path);
  return path;
}

std::string quoted(const gx_string_record_t& text) {
  return "\"" + std::string(gx_view(text)) + "\"";
}

// What is wrong with the design, to the one who waits for its session.
void tell_unusable(const std::string& message) {
  gx_complain(message);
  gx_count_error();
}

// A failure that leaves nothing to run. `said` is the message at the window.
void refuse_start(const kv_front_t& front, const char* what, const gx_string_record_t& name,
                  const std::string& why, const std::string& said) {
  gx_trace("!!! ( INITIALIZE ) ", what, "  : \"", gx_view(name), "\" ");
  gx_count_error();
  front.refuse_start(said, std::string(what) + " : " + quoted(name) + " : " + why);
}

void debug_names(const gx_string_record_t& design) {
  gx_trace("   pathname  : #", gx_view(design), "#");
  gx_debug("   filetype  : #%s#\n", sheet_type.data());
}

void open_window(const kv_front_t& front, const gx_string_record_t& design) {
  gx_string_record_t title = gx_string("kivo  ");
  gx_concat_line(design, title);
  front.open_display(set_viewports(), gx_view(title));
  gx_debug(" Init of GX package : bitmap_size : %d  %d   nplane : %d\n", gx_vext.bitmap_size.x,
           gx_vext.bitmap_size.y, gx_number_of_planes());
  gx_vext.nb_line_in_listviewp = lines_in_view;
  gx_vext.nb_list_line_max = gx_max_list_lines;
}

void open_transcript(const kv_front_t& front) {
  constexpr char failure[] = "impossible to open current_session_file";
  const gx_string_record_t name = gx_vext.cursessname = design_file("/current_session");
  gx_vext.cursessfile = gx_popen_file(gx_view(name), 'W', false);
  if (gx_vext.cursessfile != nullptr) return;
  const std::string why = x_why_unwritten(errno);
  refuse_start(front, failure, name, why,
               "!!! ( INITIALIZE ) " + std::string(failure) + "  : " + quoted(name) + " \n");
}

void open_outputs(const kv_front_t& front) {
  const gx_string_record_t design = design_file("/design_kv");
  std::string why;
  kv_sext.designfile = kv_open_design_file(std::string(gx_view(design)), why);
  if (kv_sext.designfile < 0)
    refuse_start(front, "impossible to open  designfile_name", design, why,
                 "!! Error : " + quoted(design) + " : " + why + "\n");
}

// That of the engine, in the current directory.
void open_engine_trace(const kv_front_t& front) {
  const gx_string_record_t trace = gx_string("debug_kivo2");
  kv_debf = gx_popen_file(gx_view(trace), 'W', false);
  if (kv_debf == nullptr)
    refuse_start(front, "impossible to open  DEBUG file  2 ", trace, x_why_unwritten(errno), "");
}

void take_start_up_file(const kv_front_t& front) {
  gx_get_arg(3, kv_pext.init_do_file);
  if (kv_pext.init_do_file.len == 0) return;
  auto& count = kv_pext.nb_of_ext_arg;
  for (auto& argument : kv_pext.ext_arg) {
    gx_get_arg(4 + count, argument);
    if (argument.len == 0 && !front.takes_empty_words) break;
    if (4 + count > gx_vext.nb_arg_comline) break;
    ++count;
  }
}

// False, and an error counted, when the sheet's data are not sound.
bool open_primary_sheet(const gx_string_record_t& design) {
  auto& level1 = kv_pext.arrayof_file[0];
  kv_pext.file_level_max = kv_pext.file_level_cur = 1;
  std::string why;
  level1.file_index = gx_file_try_open(gx_view(design), sheet_type, why);
  if (level1.file_index == 0) {
    tell_unusable("!! error in open file : " + why);
    gx_debug("!!! error : INITIALIZE  : %s\n", why.c_str());
    return false;
  }
  level1.file_path = design;
  kv_pext.file_id_cur = kv_pext.file_id_context = level1.file_index;
  return true;
}

// False, and an error counted, when a family, the grid or a part of an object is missing.
bool show_whether_whole(const gx_file_gene_recf_t& sheet) {
  const std::string fault = gx_sheet_fault(sheet);
  if (fault.empty()) return true;
  const auto& path = gx_at(gx_vext.filear, sheet.file_index).file_pathname;
  tell_unusable("!! error : Sheet not whole : " + quoted(path) + " : " + fault);
  gx_trace("!!! error : INITIALIZE  : \"", gx_view(path), "\" : ", fault);
  return false;
}

// False, and an error counted, when the design has no sheet, or one that lacks something.
bool show_whether_sheet(const gx_string_record_t& design) {
  const auto& sheet = gx_ptrto_gene_file_buf(kv_pext.file_id_cur);
  const int primary = gx_file_inq_primary_object(sheet);
  gx_debug(" kv_pext.file_id_cur     : %d\n", kv_pext.file_id_cur);
  gx_debug(" primary segment  : %d\n", primary);
  gx_debug("# INITIALIZE  : object_id_max : %d\n", sheet.object_id_max);
  if (primary < 0 || primary > sheet.object_id_max) {
    gx_debug_line("!!! ( INITIALIZE ) INVALID FILE : primary \"");
    debug_names(design);
    tell_unusable("!! error : Sheet not whole : " + quoted(design) + " : primary object " +
                  std::to_string(primary) + " outside 1.." + std::to_string(sheet.object_id_max));
    return false;
  }
  if (primary != 0) return show_whether_whole(sheet);
  tell_unusable("!! error : No sheet Found : " + quoted(design));
  gx_debug_line("!!! error : INITIALIZE  : no primary \"");
  debug_names(design);
  return false;
}

void prepare_sheet() {
  gx_vext.obj_pos = {};
  gx_vext.snap_state = gx_inq_snap_state(gx_ptrto_gene_file_buf(kv_pext.file_id_cur));
  gx_cursor_set_pattern(1);
  gx_hide_invisible(gx_ptrto_gene_file_buf(kv_pext.file_id_cur));
  kv_sext.gx_graphics_used = true;
  kv_sext.time_step = default_time_step;
  gx_debug("%s\n@@ END of INITIALIZE @@@@@\n%s\n", fence, fence);
  gx_debug_line("!!! ( INITIALIZE ) END ");
}

void debug_roles() {
  gx_debug("# main : END ofINITIALIZE \n");
  const std::pair<const char*, gx_vpid_t> roles[] = {{"edit", gx_vext.viewport_edit},
                                                     {"cmd", gx_vext.viewport_cmd},
                                                     {"list", gx_vext.viewport_list},
                                                     {"context", gx_vext.viewport_context},
                                                     {"activ", gx_vext.viewport_activ}};
  for (const auto& [role, id] : roles) gx_debug("# main : gx_vext.viewport_%s    : %d\n", role, id);
  gx_debug("# MAIN : num_errors : %d\n", gx_vext.num_errors);
}

void show_whether_elsewhere() {
  const auto place =
      gx_place_of_symbols(gx_ptrto_gene_file_buf(kv_pext.file_id_cur), gx_view(design_file("")));
  if (place.empty()) return;
  gx_tell_wrapped("# !! Warning : Sheets below are not found from here. Their paths begin in " +
                      place + " : start kivo there",
                  gx_line_kind::warning);
  gx_count_kind(gx_line_kind::warning);
}

void show_first_picture() {
  for (const gx_vpid_t vpid : {gx_vext.viewport_edit, gx_vext.viewport_context}) {
    kv_display_picture_all(vpid, kv_pext.file_id_cur);
    gx_keep_cross(vpid, gx_vext.obj_pos);
  }
  gx_vext.pixel_pos = gx_viewport_pt_real_to_pixel(gx_vext.viewport_edit, gx_vext.obj_pos);
  kv_pext.prev_viewport_id = 1;
  kv_frame_active(gx_vext.viewport_edit);
}

// False when not all that was written reached the file.
bool close_file(std::FILE*& file) {
  return file == nullptr || x_close(x_file(std::exchange(file, nullptr)));
}
}  // namespace

bool kv_open_session(const kv_front_t& front) {
  const gx_string_record_t design = design_file("");
  open_window(front, design);
  x_watch_stop_signals();  // up to here there is nothing to end in order
  open_transcript(front);
  kv_init_menu_action();
  gx_debug("# INITIALIZE :  KV_INIT_MENU_ACTION    done \n");
  open_outputs(front);
  if (front.traces) open_engine_trace(front);
  take_start_up_file(front);
  const bool has_sheet = open_primary_sheet(design) && show_whether_sheet(design);
  if (has_sheet) prepare_sheet();
  debug_roles();
  return has_sheet;
}

void kv_begin_session() {
  const int errors = gx_vext.num_errors;
  gx_undo_init(kv_pext.file_id_cur);  // takes over what the sheet's header says of its errors
  gx_vext.num_errors = static_cast<std::int16_t>(std::min(errors + gx_vext.num_errors, INT16_MAX));
  gx_vext.str_cmd = {};
  gx_display_cmd("");
  gx_display_list("# KIVO  version 2.02");
  show_whether_elsewhere();
  gx_vext.base_point = gx_vext.obj_pos;
  show_first_picture();
}

void kv_run_start_up_file() {
  if (kv_pext.init_do_file.len == 0) return;
  std::vector<gx_string_record_t> words = {kv_pext.init_do_file};
  const auto first = kv_pext.ext_arg.begin();
  words.insert(words.end(), first, first + kv_pext.nb_of_ext_arg);
  kv_do_words(words, kv_pext.ext_arg, kv_pext.top_var);
}

bool kv_finish_session() {
  gx_debug("%s\n@@ start of FINALISE @@@@@\n%s\n", fence, fence);
  if (kv_sext.designfile >= 0) close(std::exchange(kv_sext.designfile, -1));
  for (int level = 1; level <= kv_pext.file_level_max; ++level)
    if (const auto index = gx_at(kv_pext.arrayof_file, level - 1).file_index) gx_file_close(index);
  if (kv_pext.view_sheet_done) gx_file_close(kv_pext.file_id_views);
  if (kv_pext.act_symb_done) gx_file_close(kv_pext.file_id_act);
  gx_debug_line("@@@@@@ FINALIZE after gx_file_close  ");
  gx_terminate();
  gx_debug_line("@@@@@@ FINALIZE  after gx_terminate  ");
  close_file(kv_debf);
  close_file(gx_vext.debugfile);
  if (close_file(gx_vext.cursessfile)) return true;
  gx_vext.cursess_error = errno;
  return false;
}
