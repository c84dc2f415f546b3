#include "gx/text/status.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include "gx/text/debug.h"
#include "gx/text/state.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"

STATUS_T status;

namespace {
constexpr std::array<std::string_view, gx_number_of_codes> error_array = {
    "all_is_ok",
    "init_not_done",
    "config_invalid",
    "already_initialized",
    "display_mode_not_found",
    "display_mode_not_correct",
    "nb_of_plane_invalid",
    "no_gm_bitmap_exists",
    "init_or_open_file_not_done",
    "error_in_init",
    "file_creat_invalid",
    "file_open_invalid",
    "file_close_invalid",
    "current_file_invalid",
    "too_many_files",
    "file_name_not_found",
    "file_id_invalid",
    "file_read_invalid",
    "file_index_invalid",
    "file_data_invalid",
    "eof_file",
    "error_in_event_wait",
    "draw_text_invalid",
    "draw_cursor_invalid",
    "viewport_id_invalid",
    "viewport_bounds_invalid",
    "border_size_invalid",
    "draw_viewport_invalid",
    "drawing_viewport_impossible",
    "creating_viewport_impossible",
    "select_viewport_invalid",
    "viewport_doesnt_exist",
    "no_current_viewport",
    "too_many_viewports",
    "viewport_blocked",
    "nb_of_viewport_invalid",
    "nothing_displayed_in_viewport",
    "coordonate_conversion_overflow",
    "clipping_invalid",
    "display_cross_invalid",
    "no_current_object",
    "too_many_objects",
    "invalid_level",
    "object_id_invalid",
    "page_obj_id_invalid",
    "grid_obj_id_invalid",
    "object_structure_invalid",
    "cant_delete_instanced_object",
    "object_type_invalid",
    "object_family_invalid",
    "object_already_open",
    "object_create_invalid",
    "object_open_invalid",
    "object_close_invalid",
    "object_without_child",
    "cant_delete_main_object",
    "cant_delete_primary_object",
    "cant_move_main_object",
    "cant_move_primary_object",
    "invalid_instance_translate_2d",
    "invalid_arc3p_2d",
    "invalid_circle_2d",
    "invalid_grid_2d",
    "invalid_line_2d",
    "invalid_polyline_2d",
    "invalid_polyline5_2d",
    "invalid_rectangle_2d",
    "invalid_tag",
    "invalid_property_2d",
    "invalid_string",
    "invalid_text_height",
    "invalid_style",
    "attribute_color_invalid",
    "wrong_modelobj_mode",
    "too_many_displayed_object",
    "pick_aperture_size_invalid",
    "pick_aperture_invalid",
    "pick_mode_invalid",
    "pick_rule_invalid",
    "pick_object_not_found",
    "input_event_type_invalid",
    "wrong_display_mode",
    "illegal_color",
    "bounds_invalid",
    "name_length_invalid"};

constexpr std::string_view context_saver = "/users/velmoran/bin/save_context ";

std::vector<void (*)()>& releases() {
  static std::vector<void (*)()> list;
  return list;
}

// Hands the design directory to the installation's context saver, once there is a session to save.
void save_context() {
  if (!gx_vext.all_init_done || gx_vext.nb_arg_comline < 2) return;
  const std::string_view design = gx_view(gx_vext.argcomline[1]);
  if (design.empty() || design.size() > 163) return;
  gx_string_record_t command;
  gx_concat_all(command, context_saver, design);
  gx_debug(" !! cmd_system : \"%s\" \n", command.char_);
  gx_system(command);
}

void close_file(std::FILE*& file) {
  if (file != nullptr) std::fclose(std::exchange(file, nullptr));
}
}  // namespace

std::string_view gx_error_name(int code) {
  if (code < 0 || code >= gx_number_of_codes) return {};
  return error_array[static_cast<std::size_t>(code)];
}

void gx_set_status(gx_code code) {
  static bool stopping = false;
  const int number = static_cast<int>(code);
  status.all = number + gx_status_base;
  std::printf(" ?? error in gx_package  code : %d\n ?? error  : %30s\n", number,
              gx_error_name(number).data());
  std::fflush(stdout);
  if (!stopping) {  // a stop inside the stop goes straight to the abort
    stopping = true;
    save_context();
    close_file(gx_vext.debugfile);
    gx_release_all();
  }
  std::fflush(nullptr);
  std::abort();
}

void gx_check(const STATUS_T& word) {
  if (word.all == 0) return;
  gx_debug(" gx_check :  status.all <> gx_operation_ok : %d\n", word.all);
  gx_set_status(gx_code::current_file_invalid);
}

void gx_at_fatal_stop(void (*release)()) {
  auto& list = releases();
  if (std::find(list.begin(), list.end(), release) == list.end()) list.push_back(release);
}

void gx_release_all() {
  auto& list = releases();
  while (!list.empty()) {
    const auto release = list.back();
    list.pop_back();
    release();
  }
}

void gx_end_process(std::string_view message, int exit_status) {
  std::printf("%.*s\n", static_cast<int>(message.size()), message.data());
  close_file(gx_vext.debugfile);
  close_file(gx_vext.cursessfile);
  gx_release_all();
  std::fflush(nullptr);
  std::_Exit(exit_status);
}
