// Keys, buttons and the pointer as the last event left them.
#pragma once

#include <cstdint>

#include "gx/db/ids.h"
#include "platform/timing.h"

struct gx_input_state_t {
  bool keyf_down = false;
  std::int32_t key_state = 0;
  std::int32_t CapsLockState = 1;  // 1 while the caps lock is off
  std::int32_t gxXautoRepeatOn = 1;
  x_timeval_record_t lasttime;
  std::int32_t last_motputb = 0;
  bool snap_state = false;
  gx_object_id_t edit_comp_id = 0;
};
