// From a path as a user or a simulator writes it to the places that have it: in the expansion when
// there is one, else in the drawings.
//
// "/XR/X2/MP1" as RUN stores it, "xr.x2.mp1", "R:X2:X" as GIVE sends it (the first letter of the
// top instance left out), "m.xr.x2.mp1" (the letter of the part set before it), "0" for the net
// GROUND; letters in either case. A "*" at the end stands for any further letters, one at both
// ends for a part of a name. app/find/readings.h has all forms.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/find/drawings.h"
#include "app/find/expanded.h"
#include "app/find/find_state.h"

struct kv_search_t {
  std::vector<kv_found_t> found;
  std::string longest;  // when nothing was found: the longest part of the path that exists
};
kv_search_t kv_search_path(kv_drawings_t& drawings, std::string_view text, std::size_t most);

// After a refusal: what exists of the path, or `label` ("No block") and what it is instead.
void kv_tell_search_end(std::string_view label, const kv_search_t& search);

// The flat nets that have a path in one of those forms; when none does, those that a pin of that
// path is on. Each once, in the order of the index.
std::vector<std::int32_t> kv_search_nets(const kv_expanded_t& expanded, kv_drawings_t& drawings,
                                         std::string_view text, std::size_t most);
