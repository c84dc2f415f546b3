// The status word, the names of its codes, and the fatal stop of the package.
//
// An operation that meets an inconsistency does not return: it calls gx_set_status, which
// reports the code by name, gives back what the process holds, and aborts. Operations that can
// meet a condition their caller wants to know (a damaged file, say) return it as a gx_code.
#pragma once

#include <cstdint>
#include <string_view>

// Position in gx_error_name; 0 is success.
enum class gx_code : std::int16_t {
  all_is_ok = 0,
  init_not_done = 1,
  config_invalid = 2,
  already_initialized = 3,
  display_mode_not_found = 4,
  display_mode_not_correct = 5,
  nb_of_plane_invalid = 6,
  no_gm_bitmap_exists = 7,
  init_or_open_file_not_done = 8,
  error_in_init = 9,
  file_creat_invalid = 10,
  file_open_invalid = 11,
  file_close_invalid = 12,
  current_file_invalid = 13,
  too_many_files = 14,
  file_name_not_found = 15,
  file_id_invalid = 16,
  file_read_invalid = 17,
  file_index_invalid = 18,
  file_data_invalid = 19,
  eof_file = 20,
  error_in_event_wait = 21,
  draw_text_invalid = 22,
  draw_cursor_invalid = 23,
  viewport_id_invalid = 24,
  viewport_bounds_invalid = 25,
  border_size_invalid = 26,
  draw_viewport_invalid = 27,
  drawing_viewport_impossible = 28,
  creating_viewport_impossible = 29,
  select_viewport_invalid = 30,
  viewport_doesnt_exist = 31,
  no_current_viewport = 32,
  too_many_viewports = 33,
  viewport_blocked = 34,
  nb_of_viewport_invalid = 35,
  nothing_displayed_in_viewport = 36,
  coordonate_conversion_overflow = 37,
  clipping_invalid = 38,
  display_cross_invalid = 39,
  no_current_object = 40,
  too_many_objects = 41,
  invalid_level = 42,
  object_id_invalid = 43,
  page_obj_id_invalid = 44,
  grid_obj_id_invalid = 45,
  object_structure_invalid = 46,
  cant_delete_instanced_object = 47,
  object_type_invalid = 48,
  object_family_invalid = 49,
  object_already_open = 50,
  object_create_invalid = 51,
  object_open_invalid = 52,
  object_close_invalid = 53,
  object_without_child = 54,
  cant_delete_main_object = 55,
  cant_delete_primary_object = 56,
  cant_move_main_object = 57,
  cant_move_primary_object = 58,
  invalid_instance_translate_2d = 59,
  invalid_arc3p_2d = 60,
  invalid_circle_2d = 61,
  invalid_grid_2d = 62,
  invalid_line_2d = 63,
  invalid_polyline_2d = 64,
  invalid_polyline5_2d = 65,
  invalid_rectangle_2d = 66,
  invalid_tag = 67,
  invalid_property_2d = 68,
  invalid_string = 69,
  invalid_text_height = 70,
  invalid_style = 71,
  attribute_color_invalid = 72,
  wrong_modelobj_mode = 73,
  too_many_displayed_object = 74,
  pick_aperture_size_invalid = 75,
  pick_aperture_invalid = 76,
  pick_mode_invalid = 77,
  pick_rule_invalid = 78,
  pick_object_not_found = 79,
  input_event_type_invalid = 80,
  wrong_display_mode = 81,
  illegal_color = 82,
  bounds_invalid = 83,
  name_length_invalid = 84,
};

inline constexpr int gx_number_of_codes = 85;
inline constexpr std::int32_t gx_status_base = 0x06050000;  // subsystem 6, module 5

// The status word: 0 is success, an error is its code + gx_status_base.
struct STATUS_T {
  std::int32_t all = 0;
};
extern STATUS_T status;

// The name of a code 0..84; "" outside.
std::string_view gx_error_name(int code);

// Reports the code on standard output, runs the context-save command once the program is fully
// initialised, closes the debug file, gives back what gx_at_fatal_stop registered (last
// registered first), and aborts. In a batch it reports on standard error and ends with
// gx_batch_stop_status.
[[noreturn]] void gx_set_status(gx_code code);

// Stops with current_file_invalid when the word holds an error.
void gx_check(const STATUS_T& word);

// `release` gives back something the process holds (streams of GX files, the display). It is
// called at a fatal stop only, must not raise a status itself, and may be registered once.
void gx_at_fatal_stop(void (*release)());

// Runs the registered releases, last registered first, once; used by every fatal stop.
void gx_release_all();

// The orderly end without a session, for conditions outside the program (a lost display): prints
// the message on standard output (without a window standard error), closes the debug and session
// files, gives back what gx_at_fatal_stop registered, and exits.
[[noreturn]] void gx_end_process(std::string_view message, int exit_status);
