// The part of kv_pext about the files that are open and shown.
#pragma once

#include <cstdint>
#include <vector>

#include "expand/sheet/sheet_slots.h"
#include "gx/db/ids.h"
#include "gx/display/viewport_coords.h"
#include "gx/text/records.h"

// What the edit viewport showed once.
struct kv_last_view_t {
  gx_string_record_t path;  // of the sheet, as cur_sim_path
  gx_shown_t shown;
};

struct kv_sheets_state_t {
  gx_file_index_t file_id_cur = 0;      // sheet in the edit viewport
  kv_sheet_stack_t arrayof_file;        // entry k - 1 is level k
  std::int16_t file_level_cur = 0;      // level in view, 1 = primary sheet
  std::int16_t file_level_max = 0;      // deepest level opened
  gx_string_record_t cur_sim_path;      // of the level in view, each name followed by "/"
  gx_file_index_t file_id_context = 0;  // file in the context viewport

  gx_file_index_t file_id_views = 0;  // sheet of VIEw SHEet
  bool view_sheet_done = false;       // it is open
  gx_file_index_t file_id_act = 0;    // symbol of ACTivate SYMbol
  bool act_symb_done = false;         // it is open
  gx_object_id_t act_symb_id = 0;     // its component
  gx_string_record_t act_file_path;

  std::vector<kv_last_view_t> last_views;  // the last one at the end

  bool disp_pic_area = false;  // VIEw AREa: an area is in force, between the two corners
  gx_pointreal_t pt_pic_area1, pt_pic_area2;
  bool search_done = false;  // SEArch: a path is in force
  gx_string_record_t search_path;
};
