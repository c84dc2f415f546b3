// The part of kv_pext about finding one's way.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "gx/db/ids.h"
#include "netlist/path_index.h"

// A place that FINd PATh found.
struct kv_found_t {
  std::string path;       // as RUN stores it
  std::string_view what;  // "instance", "block", "net", "bit of a bus", "pin"
  int object_id = 0;
  std::string sheet_path;   // of the sheet that it is on
  std::int32_t visit = -1;  // of that sheet in the expansion; -1: found in the drawings
};

// A flat net that HIGhlight marks.
struct kv_highlighted_t {
  std::string path;
  int color = 1;  // 1..gx_nb_of_highlights
};

// An object of the expansion that a command marks as changed.
struct kv_changed_object_t {
  kv_named what;  // inst, macro or net
  std::string path;
  friend bool operator==(const kv_changed_object_t&, const kv_changed_object_t&) = default;
};

struct kv_find_state_t {
  std::shared_ptr<const kv_memory_paths_t> paths;  // of the expansion `paths_of_run`
  std::uint64_t paths_of_run = 0;
  std::vector<kv_found_t> found;  // of the last FINd PATh that found several
  std::uint64_t found_of_run = 0;
  std::vector<kv_highlighted_t> highlighted;  // in the order of HIGhlight
  std::vector<kv_changed_object_t> changed;   // of the last DIFference DESign
};
