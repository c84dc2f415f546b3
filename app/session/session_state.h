// The part of kv_pext about the session itself: its arguments and where the user is.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/language/substitution.h"
#include "gx/db/ids.h"
#include "gx/display/screen_state.h"

// Lines that were typed (app/session/input/recall.h).
struct kv_recall_state_t {
  std::vector<std::string> lines;  // the newest last
  bool is_read = false;            // with those of earlier sessions
  std::size_t back = 0;            // how far back the line is that was recalled; 0: none was
  std::string draft;               // what stood on the command line before
};

// What the mouse is in the middle of (app/session/input/gestures.h).
struct kv_hands_t {
  gx_vpid_t panned = 0;      // viewport; 0: none
  gx_point16_t from;         // of a pan: the pointer of the last event
  int button = 0;            // 1..3: held, and its commands are those of a drag; 0: none
  gx_point16_t pressed;      // where it went down
  bool is_drag = false;      // the pointer has moved since
  std::string place;         // that the line under a pressed button 1 names, as a command
  bool menu_waits = false;   // the menu came by a click: the next one takes a line
  bool turns_wheel = false;  // the last event was a turn of the wheel that moved the picture
};

struct kv_session_state_t : kv_recall_state_t {
  kv_hands_t hands;
  gx_vpid_t prev_viewport_id = 0;  // viewport of the previous input event
  gx_point16_t last_pixel_pos;     // of the pointer, when it last moved
  std::int32_t line_position = 0;  // how far back in the list a line was recalled, at most 0
  bool save_to_do = false;

  gx_string_record_t init_do_file;  // start-up command file; empty: none
  std::int16_t nb_of_ext_arg = 0;   // its arguments, 0..30
  kv_array_param_t ext_arg;         // $ARG of the outermost level
  kv_array_param_t top_var;         // $VAR of the outermost level
};
