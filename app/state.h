// The application's one global state record.
#pragma once

#include <array>
#include <cstdint>

#include "expand/sheet_slots.h"
#include "gx/db/ids.h"
#include "gx/display/screen_state.h"
#include "gx/text/records.h"

// The values behind $ARG1..$ARG30 or $VAR1..$VAR30; an empty entry has length 0.
using kv_array_param_t = std::array<gx_string_record_t, 30>;

struct kv_defref_var_rec_t {
  gx_vpid_t prev_viewport_id = 0;  // viewport of the previous input event
  gx_pointreal_t pick_aperture;
  bool save_to_do = false;
  gx_file_index_t file_id_cur = 0;      // sheet in the edit viewport
  kv_sheet_stack_t arrayof_file;        // entry k - 1 is level k
  std::int16_t expand_level = 0;        // of the run
  std::int32_t macro_level = 0;         // of the run
  std::int16_t file_level_cur = 0;      // level in view, 1 = primary sheet
  std::int16_t file_level_max = 0;      // deepest level opened
  gx_file_index_t file_id_context = 0;  // file in the context viewport
  gx_file_index_t file_id_act = 0;      // symbol of ACTivate SYMbol
  gx_file_index_t file_id_views = 0;    // sheet of VIEw SHEet
  bool disp_pic_area = false;           // an area is in force
  gx_pointreal_t pt_pic_area1, pt_pic_area2;
  gx_point16_t last_pixel_pos;
  gx_pointreal_t obj_ptr1, obj_ptr2;
  gx_string_record_t cur_sim_path;
  std::int16_t nb_of_ext_arg = 0;  // 0..30
  kv_array_param_t ext_arg;        // $ARG of the outermost level
  std::int32_t line_position = 0;  // how far back in the list a line was recalled, at most 0
  bool mark_rect_done = false;     // a rubber rectangle follows the pointer
  gx_pointreal_t object_cur_origin;
  bool gen_data = false;
  bool smash_done = false;
  bool view_sheet_done = false;
  bool search_done = false;
  gx_string_record_t search_path;
  gx_string_record_t act_file_path;
  gx_name_record_t act_prop_name;
  gx_value_record_t act_prop_value;
  bool act_prop_exist = false;
  std::int16_t act_prop_type = 0;
  gx_object_id_t act_symb_id = 0;
  bool act_symb_done = false;
  kv_array_param_t top_var;         // $VAR of the outermost level
  gx_string_record_t init_do_file;  // start-up command file
};

extern kv_defref_var_rec_t kv_pext;
