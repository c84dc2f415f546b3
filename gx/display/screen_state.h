// The window, its viewports, and where texts are in them.
//
// X types are named by their incomplete structs, so that this header needs no X header.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "gx/db/ids.h"
#include "gx/display/strokes/stroke_layers.h"
#include "gx/text/records.h"

struct _XDisplay;
struct _XGC;

struct gx_pen_t;          // gx/display/strokes/pen.cpp
struct gx_screen_t;       // gx/display/screen.h
struct gx_theme_t;        // gx/display/sheet/theme.h
struct gx_scaled_font_t;  // gx/display/strokes/stroke_text.cpp

using gx_vpid_t = std::int8_t;  // 1..16; 0 = none

inline constexpr int gx_max_viewports = 16;

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
  gx_boundsreal_t fit_box;          // that was shown whole last,
  gx_boundsreal_t fit_part;         // and what was shown then
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

// A net, or one segment of a net, that every picture of its sheet marks
// (gx/display/sheet/highlight.h).
inline constexpr int gx_nb_of_highlights = 6;  // colours

struct gx_highlight_t {
  gx_file_index_t file_index = 0;
  gx_object_id_t id = 0;
  gx_object_id_t vertex = 0;  // where its probe stands; 0: at the first end of its first segment
  gx_string_record_t name;    // in the probe; empty: no probe
  std::uint8_t color = 1;     // 1..gx_nb_of_highlights, see gx/display/sheet/theme.h
};

// A cross or a link that a command has marked (gx/display/sheet/markers.h).
struct gx_kept_mark_t {
  gx_vpid_t vpid = 0;
  bool is_link = false;
  gx_pointreal_t from, to;
  friend bool operator==(const gx_kept_mark_t&, const gx_kept_mark_t&) = default;
};

// Which viewport is what; 0: none. `viewport_activ` shows an activated symbol,
// `viewport_tree` the tree of blocks.
struct gx_view_roles_t {
  gx_vpid_t viewport_edit = 0, viewport_cmd = 0, viewport_list = 0, viewport_context = 0,
            viewport_activ = 0, viewport_tree = 0;
};

struct gx_screen_state_t : gx_view_roles_t {
  const gx_screen_t* screen = nullptr;  // null without a display
  _XDisplay* dpy = nullptr;             // what follows is of X, see gx/window
  int scrid = 0;
  unsigned long root = 0, win = 0;
  gx_point16_t window_size;  // pixels, when it was made or last seen
  _XGC* our_gc = nullptr;
  _XGC* copy_gc = nullptr;     // background colour, no clip: for copies and for clearing
  unsigned long drawable = 0;  // where strokes go; 0: the window (gx/display/strokes/offscreen.h)
  unsigned long hidden_picture = 0;                      // pixmap for it, at least as large as
  gx_point16_t hidden_size;                              // this; 0 when there is none
  unsigned long wm_protocols = 0, wm_delete_window = 0;  // atoms: the user closes the window
  std::shared_ptr<gx_pen_t> pen;                         // strokes not yet sent
  std::shared_ptr<gx_scaled_font_t> strpt;               // glyphs at the size of the screen texts
  const gx_theme_t* theme = nullptr;                     // null: the classic one
  std::array<gx_color_t, gx_nb_of_colors> colorrec;
  unsigned long backgrpixel = 0, foregrpixel = 0;
  gx_point16_t bitmap_size;         // drawable width - 1, height - 1
  std::int16_t cursor_ind_cur = 0;  // 1..12
  std::array<gx_cursor_rec_t, 12> cursor_array;
  std::uint8_t color_obj_selected = 2;
  gx_pointreal_t obj_pos;  // pointer position, design units
  gx_point16_t pixel_pos, pixel_ptr1, pixel_ptr2;
  gx_point16_t pixel_mark;  // where the pointer was when the rectangle was begun
  bool display_rectangle_todo = false;
  std::int8_t viewport_id_max = 0;
  gx_vpid_t viewport_current = 0;
  std::array<gx_viewport_rec_t, gx_max_viewports + 1> viewport;  // entry i is viewport i
  gx_vpid_t viewport_id_start = 0, viewport_id = 0;
  std::int32_t coef_charh = 0, coef_chars = 0;
  std::int16_t cmd_x0 = 0, cmd_y0 = 0, cmd_xi = 0, cmd_yi = 0, cmd_height = 0, cmd_step = 0,
               cmd_color = 1;
  std::int16_t listb_x0 = 0, listb_y0 = 0, listb_xi = 0, listb_yi = 0, list_height = 0,
               list_step = 0, list_color = 1;
  std::int16_t viewport_back_color = 0;
  std::int16_t istart_list = 1, istart_cmd = 1;  // first character shown, 1..140
  bool display_on = false;
  bool cmd_executing = false;
  gx_string_record_t str_cmd;  // the command line being typed
  int caret_column = 0;        // of the caret on the screen
  int caret_at = 0;            // character before which it stands, from 1; 0: after the last
  std::vector<gx_kept_mark_t> kept_marks;
  std::vector<gx_highlight_t> highlights;  // ordered by file, then id
};
