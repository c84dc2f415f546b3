// Where a change between two designs is in the drawings of the new one.
#pragma once

#include <optional>
#include <string>

#include "app/find/expanded.h"
#include "app/find/find_state.h"
#include "compare/changes.h"

struct kv_changed_place_t {
  std::string path;                           // of the object; of what is gone as it was
  std::string at;                             // of its sheet: "" for the primary sheet
  int object_id = 0;                          // on that sheet; 0 for what is gone
  std::optional<kv_changed_object_t> marked;  // what of the new design the change is about
};
kv_changed_place_t kv_changed_place(const kv_expanded_t& expanded, const kv_change_t& change);
