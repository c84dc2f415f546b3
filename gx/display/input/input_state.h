// Keys, buttons and the pointer as the last event left them.
#pragma once

#include <cstdint>

#include "gx/db/ids.h"
#include "gx/display/screen_state.h"
#include "platform/timing.h"

// Presses of button 1 on their way to a click.
struct gx_click_state_t {
  gx_point16_t pressed, released;  // window pixels
  std::uint32_t press_time = 0;    // server milliseconds
  bool is_click = false;           // the last press and release were one
  gx_point16_t first_pressed;      // of the click that may become a double one
};

struct gx_input_state_t {
  bool keyf_down = false;
  std::int32_t key_state = 0;
  std::int32_t CapsLockState = 1;  // 1 while the caps lock is off
  std::int32_t gxXautoRepeatOn = 1;
  x_timeval_record_t lasttime;
  std::int32_t last_motputb = 0;   // time of the last motion, server milliseconds
  bool rest_awaited = false;       // the pointer moved and has not come to rest yet
  gx_point16_t moved_to;           // where it was last, as the server reported
  gx_point16_t pointer_put;        // where it was put last by the program
  bool was_put = false;            // since button 1 went down
  bool pointer_stays = false;      // it is dragged: what would put it near where it is does not
  gx_vpid_t last_viewport_id = 0;  // the last viewport that the pointer was in, and where
  gx_point16_t last_viewport_pixel;
  gx_click_state_t click;
  bool snap_state = false;
  gx_object_id_t edit_comp_id = 0;
};
