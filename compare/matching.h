// Which block, instance and net of one design is which of another.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "compare/compared_design.h"

inline constexpr std::int32_t kv_unmatched = -1;

struct kv_matching_t {
  std::vector<std::int32_t> block;  // of each old block the new one, or kv_unmatched
  std::vector<std::int32_t> old_block;
  std::vector<std::int32_t> renamed;   // old blocks that were matched by what is in them
  std::vector<std::int32_t> instance;  // of each old instance
  std::vector<std::int32_t> old_instance;
  std::vector<std::int32_t> net;  // of each old net; 0 is matched with 0
  std::vector<std::int32_t> old_net;
  // Of each net the one net that all its pins on instances of both designs come from or go to;
  // kv_unmatched when there are several or none.
  std::vector<std::int32_t> only_target, only_source;
};

// Matched instances have the same pins. Time and memory are linear in the two designs.
kv_matching_t kv_match(const kv_compared_design_t& old, const kv_compared_design_t& now);

// Where a path of the old design would be in the new one by the renamed blocks alone.
std::string kv_expected_path(const kv_compared_design_t& old, const kv_compared_design_t& now,
                             const kv_matching_t& matching, std::int32_t block,
                             std::string_view name);
