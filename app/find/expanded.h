// The expansion that the session holds, for the commands that ask it.
#pragma once

#include <optional>
#include <string_view>

#include "app/find/drawings.h"
#include "expand/origins.h"
#include "gx/text/at.h"
#include "netlist/path_index.h"

inline constexpr std::string_view kv_no_expansion = "# !! Error : No expanded design ? ";

struct kv_expanded_t {
  kv_memory_netlist_t netlist;
  const kv_origins_t& origins;
  const kv_memory_paths_t& paths;  // made at the first question after a run

  const kv_visit_t& visit(std::int32_t index) const { return gx_at(origins.visits, index); }
};

// Nothing before the first RUN, and after one that was not done.
std::optional<kv_expanded_t> kv_expanded();

// The object of a kind that has a path, to the letter or else in any; nothing when there is none.
std::optional<kv_object_t> kv_object_at(const kv_expanded_t& expanded, kv_named what,
                                        std::string_view path);

// The visit of the sheet of a simulation path ("", "/", "/XR/X2/"); -1 when there is none.
std::int32_t kv_visit_at(const kv_expanded_t& expanded, std::string_view sheet_path);

// The flat net of a net that is drawn on the sheet of a visit; 0 when there is none.
std::int32_t kv_flat_net_of(const kv_expanded_t& expanded, std::int32_t visit, int net_id);

// The way to the sheet of a visit; nothing when the drawings are no longer those of the run.
std::optional<kv_way_t> kv_way_of_visit(const kv_expanded_t& expanded, kv_drawings_t& drawings,
                                        std::int32_t visit);
