// The one global state record of the GX package.
//
// Plain fields under their own names, grouped by the rooms that own them; other rooms reach them
// through the owners' accessors. X types are named by their incomplete structs so that this header
// needs no X header. gx_reset_state gives a test a fresh record.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "gx/text/arguments.h"
#include "gx/text/records.h"
#include "platform/timing.h"

struct _XDisplay;
struct _XGC;

struct gx_file_gene_recf_t;  // gx/db/file_records.h
struct gx_undo_objet_rec_t;  // gx/db/undo.h
struct gx_undo_list_t;
struct gx_pen_t;          // gx/display/pen.cpp
struct gx_scaled_font_t;  // gx/display/stroke_text.cpp

using gx_file_index_t = std::int8_t;  // 1..32; 0 = none
using gx_object_id_t = std::int16_t;  // 1..30000; 0 = none
using gx_vpid_t = std::int8_t;        // 1..16; 0 = none

inline constexpr int gx_max_files = 32;
inline constexpr int gx_max_object_id = 30000;
inline constexpr int gx_max_viewports = 16;
inline constexpr int gx_max_list_lines = 500;
inline constexpr int gx_max_menu_lines = 12;

// One slot of the file table. A slot, once used, is never given back; gx_file_reopen points it at
// another file.
struct gx_file_io_rec_t {
  bool version_found = false;    // the file existed on disk
  bool already_open_ok = false;  // it was opened and read
  bool file_updated = false;     // an object was created or changed since
  gx_string_record_t dirname;
  gx_string_record_t filetype;
  std::int16_t version = 0;
  gx_string_record_t link_value;     // "_" and the version digits
  gx_string_record_t file_pathname;  // dirname "/" filetype ".gx" link_value
  gx_string_record_t link_pathname;  // dirname "/" filetype ".gx"
  std::FILE* file_io_id = nullptr;   // owned; closed by gx_file_close and by the fatal stops
  std::shared_ptr<gx_file_gene_recf_t> start_buf_ptr;  // null while the slot is unused
};

struct gx_border_info {
  std::uint8_t pixel_width = 0;
  std::uint8_t reserved = 0;
  std::uint8_t border_color = 0;      // colour index 0..7
  std::uint8_t background_color = 0;  // colour index 0..7
};

struct gx_viewport_rec_t {
  bool vp_blocked = false;          // a later viewport overlaps this one
  gx_file_index_t file_index = 0;   // file shown, 0 = none
  gx_boundsreal_t bounds_vp;        // place, in 1/100000 of the drawable size
  gx_bounds16_t pixel_bounds;       // the same in pixels
  gx_object_id_t object_id = 0;     // root of the picture
  gx_boundsreal_t bounds_part;      // part of the design shown, design units
  gx_bounds16_t clip_wind;          // clip rectangle, pixels
  std::int32_t object_scale = 100;  // design units per pixel, at least 1
  gx_border_info border;
};

// A viewport as the application asks for it.
struct gx_viewport_init_rec_t {
  gx_boundsreal_t bounds;  // in 1/100000 of the drawable size
  gx_border_info border;
};

struct gx_color_t {
  unsigned long pixel = 0;
  std::uint16_t red = 0, green = 0, blue = 0;
};

struct gx_cursor_rec_t {
  std::uint32_t shape = 0;   // X cursor font
  unsigned long cursid = 0;  // X cursor
  std::uint32_t color = 0;   // colour index
};

struct gx_menu_rec_t {
  bool cmd_on = false;     // the line carries a command
  gx_string_record_t str;  // at most 18 characters
  gx_string_record_t cmd;
};

template <std::size_t Entries>
using gx_menu_level_t = std::array<std::unique_ptr<gx_menu_rec_t>, Entries>;

struct gx_defref_var_rec_t {
  // --- session (gx/text)
  std::FILE* debugfile = nullptr;    // owned by the application
  std::FILE* cursessfile = nullptr;  // session transcript, owned by the application
  std::int16_t num_errors = 0;       // of the whole session
  std::int16_t num_warnings = 0;
  bool all_init_done = false;  // start-up is complete
  bool end_flag = false;       // BYE or QUIT was given
  std::int32_t nb_arg_comline = 0;
  std::array<gx_string_record_t, gx_max_arg_comline> argcomline;
  std::int16_t do_ind = 0;  // nesting of command files
  std::array<std::FILE*, 10> commandfile{};

  // --- file slots and objects (gx/db)
  std::array<gx_file_io_rec_t, gx_max_files + 1> filear;  // entry i is file index i; 0 unused
  std::int8_t num_file_open = 0;                          // slots 1..num_file_open are in use
  gx_file_index_t cur_file = 0;
  std::int16_t check_data_done = 0;
  gx_object_id_t open_obj_id = 0;  // object being created or open
  gx_object_id_t previous_obj_atlevel0 = 0;
  std::int16_t cur_obj_level = 0;                    // 0..32
  std::array<gx_object_id_t, 33> current_family{};   // object open at each level
  std::array<gx_object_id_t, 33> newest_at_level{};  // last object created there
  gx_object_id_t picked_obj_id = 0;
  bool vertex_list_to_do = false;
  std::array<std::array<std::vector<gx_object_id_t>, 8>, 8> vertex_list_ar;   // newest last
  std::array<std::array<std::vector<gx_object_id_t>, 8>, 8> segment_list_ar;  // newest last
  gx_pointreal_t pick_ap_center, pick_ap_size;
  gx_boundsreal_t pick_ap_bounds;
  bool pick_ap_new = false;
  std::int32_t origin_page_x = 0, origin_page_y = 0;
  std::shared_ptr<gx_undo_list_t> undo_list;        // null until gx_undo_init
  gx_undo_objet_rec_t* ptrto_undo_start = nullptr;  // its entries
  gx_undo_objet_rec_t* ptrto_undo_cur = nullptr;

  // --- display (gx/display)
  bool init_done = false;    // gx_init or gx_init_nograph was done
  _XDisplay* dpy = nullptr;  // null without a display
  int scrid = 0;
  unsigned long root = 0, win = 0;
  _XGC* our_gc = nullptr;
  unsigned long wm_protocols = 0, wm_delete_window = 0;  // atoms: the user closes the window
  std::shared_ptr<gx_pen_t> pen;                         // strokes not yet sent
  std::shared_ptr<const gx_scaled_font_t> strpt;         // glyphs at the size of the screen texts
  std::array<gx_color_t, 9> colorrec;
  unsigned long backgrpixel = 0, foregrpixel = 0;
  gx_point16_t bitmap_size;         // drawable width - 1, height - 1
  std::int16_t cursor_ind_cur = 0;  // 1..12
  std::array<gx_cursor_rec_t, 12> cursor_array;
  std::uint8_t color_obj_selected = 2;
  gx_pointreal_t base_point;
  gx_pointreal_t obj_pos;  // pointer position, design units
  gx_point16_t pixel_pos, pixel_ptr1, pixel_ptr2;
  bool display_rectangle_todo = false;
  std::int8_t viewport_id_max = 0;
  gx_vpid_t viewport_current = 0;
  std::array<gx_viewport_rec_t, gx_max_viewports + 1> viewport;  // entry i is viewport i
  gx_vpid_t viewport_id_start = 0, viewport_id = 0;
  gx_vpid_t viewport_edit = 0, viewport_cmd = 0, viewport_list = 0, viewport_context = 0,
            viewport_activ = 0;
  std::int32_t dim_pin = 1000;  // half size of a pin's diamond, design units
  std::int32_t coef_charh = 0, coef_chars = 0;
  std::int16_t cmd_x0 = 0, cmd_y0 = 0, cmd_xi = 0, cmd_yi = 0, cmd_height = 0, cmd_step = 0,
               cmd_color = 0;
  std::int16_t listb_x0 = 0, listb_y0 = 0, listb_xi = 0, listb_yi = 0, list_height = 0,
               list_step = 0, list_color = 0;
  std::int16_t viewport_back_color = 0;
  std::int16_t istart_list = 1, istart_cmd = 1;  // first character shown, 1..140
  bool display_on = false;
  bool transcript_state = false;
  bool cmd_executing = false;
  gx_string_record_t str_cmd;  // the command line being typed
  std::int16_t nb_line_in_listviewp = 0;
  std::int16_t nb_list_line_max = 0;                            // at most gx_max_list_lines
  std::int16_t nlinlist_end = 0;                                // last line of the list
  std::int16_t nlinlist_disp = 0;                               // first line shown
  std::array<gx_string_record_t, gx_max_list_lines> line_list;  // line n at entry n - 1
  std::int32_t lpplot_scale = 1;

  // --- input (gx/display)
  bool keyf_down = false;
  std::int32_t key_state = 0;
  std::int32_t CapsLockState = 1;  // 1 while the caps lock is off
  std::int32_t gxXautoRepeatOn = 1;
  x_timeval_record_t lasttime;
  std::int32_t last_motputb = 0;
  bool snap_state = false;
  gx_object_id_t edit_comp_id = 0;

  // --- menus (gx/display)
  std::array<std::int32_t, 4> menuline_lev{};   // line under the pointer, by level
  std::array<std::int32_t, 4> prelinsel_lev{};  // line highlighted, by level
  std::int32_t menu_level = 0;
  gx_menu_level_t<12> menu1_arofptr;
  gx_menu_level_t<12 * 12> menu2_arofptr;
  gx_menu_level_t<12 * 12 * 12> menu3_arofptr;
  gx_menu_level_t<12 * 12 * 12 * 12> menu4_arofptr;
  bool menu_drawn = false;
  bool menu_hidden = false;  // drawn, but off the screen while something draws under it
  gx_bounds16_t menu_extbounds, menu_boxbounds;
  std::array<gx_bounds16_t, 4> menu_lev_extbounds, menu_lev_boxbounds;
  std::array<unsigned long, 4> menu_pixid{};

  // --- key bindings (gx/display): the command text of each key
  std::array<gx_string_record_t, 12> action_f, action_fs, action_fc, action_fa;
  std::array<gx_string_record_t, 12> action_fup, action_fsup, action_fcup, action_faup;
  std::array<gx_string_record_t, 4> action_a, action_as, action_ac, action_aa;
  std::array<gx_string_record_t, 6> action_but;
  std::array<gx_string_record_t, 13> action_ck;
};

extern gx_defref_var_rec_t gx_vext;

// A fresh record; what the old one held open stays open (its owners close it).
void gx_reset_state();
