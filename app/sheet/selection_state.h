// The part of kv_pext about marking and selecting.
#pragma once

#include <cstdint>

#include "gx/db/ids.h"
#include "gx/text/records.h"

inline constexpr gx_pointreal_t kv_first_position = {512, 290};

struct kv_selection_state_t {
  gx_pointreal_t pick_aperture = {10, 10};
  gx_pointreal_t obj_ptr1, obj_ptr2;  // marked corners, design units
  bool mark_rect_done = false;        // a rubber rectangle follows the pointer
  gx_pointreal_t object_cur_origin = kv_first_position;
  bool smash_done = false;  // SMAsh ON

  bool act_prop_exist = false;  // SELect PROperty found one; the last one was
  gx_name_record_t act_prop_name;
  gx_value_record_t act_prop_value;
  std::int16_t act_prop_type = 0;
};
