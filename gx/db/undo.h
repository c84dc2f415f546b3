// The undo list: every change that an editor may want to take back, grouped into steps. KIVO
// records them; editors replay them (gx/edit/undo_replay.h).
//
// The list is a start entry and the entries after it; a step is a marker and the entries up to
// the next marker. `ptrto_undo_cur` is the newest change still done: a new one drops what lies
// after it.
#pragma once

#include <deque>
#include <memory>
#include <variant>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"

enum class gx_undo_op : std::int16_t {
  start = 0,
  step = 1,
  deleted = 2,
  undeleted = 3,
  selected = 4,
  unselected = 5,
  created = 6,
  switches = 12,
  bus = 23,
};

// --- the old and new values of an entry
struct gx_undo_placement_t {
  std::int16_t child1 = 0, child2 = 0;
  std::int16_t old_rotate = 0, new_rotate = 0;
  bool old_fixed = false, new_fixed = false;
  bool set_unvisible = false;  // the unvisible flag that an undo sets again
  bool old_visible = false, new_visible = false;
  gx_pointreal_t old_point, new_point;
};
struct gx_undo_box_t {
  gx_boundsreal_t old_bounds, new_bounds;
};
struct gx_undo_text_t {
  std::int32_t old_dim = 0, new_dim = 0;
  gx_string_record_t* ptrto_oldstr = nullptr;
  gx_string_record_t* ptrto_newstr = nullptr;
};
struct gx_undo_shape_t {
  gx_pointreal_t old_pt1, new_pt1, old_pt2, new_pt2, old_pt3, new_pt3;
};
struct gx_undo_bus_t {
  bool old_is_bus = false;
  std::int16_t old_bus_start = 0, old_bus_end = 0;
  bool new_is_bus = false;
  std::int16_t new_bus_start = 0, new_bus_end = 0;
};

inline constexpr std::int32_t gx_undo_parity = 0x12345678;

struct gx_undo_objet_rec_t {
  gx_file_index_t file_index = 0;  // 0 in a step marker
  gx_object_id_t object_id = 0;    // 0 in a step marker
  gx_undo_objet_rec_t* previous = nullptr;
  gx_undo_objet_rec_t* following = nullptr;  // null in the newest entry
  gx_undo_op operation = gx_undo_op::start;
  bool new_step = false;
  std::int32_t parity = gx_undo_parity;
  std::variant<gx_undo_placement_t, gx_undo_box_t, gx_undo_text_t, gx_undo_shape_t, gx_undo_bus_t>
      UU;
};

// Owns the entries in the order in which they were made; entry 0 is the start entry. Those after
// the newest are used again.
struct gx_undo_list_t {
  std::deque<gx_undo_objet_rec_t> entries;
  std::size_t used = 0;
};

struct gx_undo_state_t {
  std::shared_ptr<gx_undo_list_t> undo_list;        // null until gx_undo_init
  gx_undo_objet_rec_t* ptrto_undo_start = nullptr;  // its entries
  gx_undo_objet_rec_t* ptrto_undo_cur = nullptr;
  gx_pointreal_t base_point;
};

// The part of gx_vext that this room and those above it may touch.
extern gx_undo_state_t& gx_undo;

// Starts the list (nothing is recorded before) and takes the check state of the file.
void gx_undo_init(gx_file_index_t file_index);
// Opens a new step: the following entries are taken back together.
void gx_undo_define_new_step();
// Records one change of one object; nothing while there is no list. The entry is returned so that
// the caller can fill its values (nullptr when nothing was recorded).
gx_undo_objet_rec_t* gx_undo_put_object(gx_file_index_t file_index, int id, gx_undo_op operation);
