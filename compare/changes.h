// What changed from one design to another, electrically: a list of changes that are all true.
// Applied to the old design they give the instances, values and connections of the new one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "compare/compared_design.h"

enum class kv_change : std::uint8_t {
  branch_renamed,
  branch_gone,  // with all that was in it
  branch_new,   // what is in it follows as instances that are new
  instance_gone,
  instance_new,
  instance_renamed,
  values_changed,
  net_renamed,
  net_split,
  net_joined,
  pin_moved
};
std::string_view kv_change_word(kv_change change);  // "net split"

struct kv_changed_value_t {
  std::string name, before, after;  // "": it had none, it has none
};
struct kv_changed_pin_t {
  std::string pin;            // of a new instance its name, else its path; "D[3]" for a bit
  std::string before, after;  // nets; "": none
};

// What is before has the name that it has in the old design, what is after that of the new one; a
// pin has the path of the new one. So the order of the changes does not matter.
struct kv_change_t {
  kv_change change = kv_change::branch_renamed;
  std::string before, after;                    // paths; "" before what is new, after what is gone
  std::vector<kv_changed_value_t> values = {};  // of what is new: all
  // Of what is new: all; of nets split and joined: those that came to the net `after`. Of a
  // moved pin itself.
  std::vector<kv_changed_pin_t> pins = {};
  std::int32_t leaves = 0;  // of a branch that is gone or new: the instances in it
  bool in_new_branch = false;
  std::string sheet =
      {};  // of what is gone: the block of the new design that it would be in, "": none
};

// Instances and nets that no line names are where they were, below branches that were renamed, and
// nets keep the pins that no line moves. Time and memory are linear in the two designs.
std::vector<kv_change_t> kv_compare(const kv_compared_design_t& old,
                                    const kv_compared_design_t& now);
