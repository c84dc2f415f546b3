// What an edit has under way: the object being built, the vertices still to be joined, the undo
// list.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "gx/db/ids.h"
#include "gx/text/records.h"

struct gx_undo_objet_rec_t;  // gx/db/undo.h
struct gx_undo_list_t;

struct gx_edit_state_t {
  gx_object_id_t open_obj_id = 0;  // object being created or open
  gx_object_id_t previous_obj_atlevel0 = 0;
  std::int16_t cur_obj_level = 0;                    // 0..32
  std::array<gx_object_id_t, 33> current_family{};   // object open at each level
  std::array<gx_object_id_t, 33> newest_at_level{};  // last object created there
  bool vertex_list_to_do = false;
  std::array<std::array<std::vector<gx_object_id_t>, 8>, 8> vertex_list_ar;   // newest last
  std::array<std::array<std::vector<gx_object_id_t>, 8>, 8> segment_list_ar;  // newest last
  std::shared_ptr<gx_undo_list_t> undo_list;        // null until gx_undo_init
  gx_undo_objet_rec_t* ptrto_undo_start = nullptr;  // its entries
  gx_undo_objet_rec_t* ptrto_undo_cur = nullptr;
  gx_pointreal_t base_point;
};

// The part of gx_vext that this room and those above it may touch.
extern gx_edit_state_t& gx_edit;
