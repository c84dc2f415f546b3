// The command text that each key and button runs.
#pragma once

#include <array>

#include "gx/text/records.h"

// Keys that have a slot of their own, in the order of their names in keys.cpp.
enum class gx_other_key {
  tab,
  escape,
  control_f,
  wheel_up,  // turned away from the user, over a picture
  wheel_down,
  shift_wheel_up,
  shift_wheel_down
};
inline constexpr int gx_nb_of_other_keys = 7;

struct gx_key_state_t {
  std::array<gx_string_record_t, 12> action_f, action_fs, action_fc, action_fa;
  std::array<gx_string_record_t, 12> action_fup, action_fsup, action_fcup, action_faup;
  std::array<gx_string_record_t, 4> action_a, action_as, action_ac, action_aa;
  std::array<gx_string_record_t, 6> action_but;
  std::array<gx_string_record_t, 13> action_ck;
  std::array<gx_string_record_t, gx_nb_of_other_keys> action_other;
};
