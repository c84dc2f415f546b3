// The part of kv_pext about the boxes that say what the pointer rests on.
#pragma once

#include "gx/text/records.h"

struct kv_hint_state_t {
  bool hints_on = false;       // DISPlay HINts
  bool is_hint_shown = false;  // there is one on the screen,
  gx_bounds16_t hint_box;      // here
};
