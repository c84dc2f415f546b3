// Looking for a path in the drawings of a design that was not expanded.
#pragma once

#include <string_view>
#include <vector>

#include "app/find/drawings.h"
#include "app/find/find_state.h"

// What bears the path with this key (kv_path_key), or one that begins with it: at most `most`, the
// sheets in the order of the walk.
std::vector<kv_found_t> kv_search_drawings(kv_drawings_t& drawings, std::string_view key,
                                           bool is_beginning, std::size_t most);
