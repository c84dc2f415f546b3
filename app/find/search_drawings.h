// Looking for a path in the drawings of a design that was not expanded.
#pragma once

#include <string_view>
#include <vector>

#include "app/find/drawings.h"
#include "app/find/find_state.h"
#include "app/find/readings.h"

// What has a path that matches this key: at most `most`, the sheets in the order of the walk. Pins
// and bits are left out of what matches anywhere.
std::vector<kv_found_t> kv_search_drawings(kv_drawings_t& drawings, std::string_view key,
                                           kv_match match, std::size_t most);
