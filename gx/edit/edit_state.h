// What an edit has under way: the object being built and the vertices still to be joined.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "gx/db/ids.h"

struct gx_edit_state_t {
  gx_object_id_t open_obj_id = 0;  // object being created or open
  gx_object_id_t previous_obj_atlevel0 = 0;
  std::int16_t cur_obj_level = 0;                   // 0..32
  std::array<gx_object_id_t, 33> current_family{};  // object open at each level
  std::vector<gx_object_id_t> newest_child;         // by father: the child created last
  bool vertex_list_to_do = false;
  std::array<std::array<std::vector<gx_object_id_t>, 8>, 8> vertex_list_ar;   // newest last
  std::array<std::array<std::vector<gx_object_id_t>, 8>, 8> segment_list_ar;  // newest last
};

// The part of gx_vext that this room and those above it may touch.
extern gx_edit_state_t& gx_edit;
