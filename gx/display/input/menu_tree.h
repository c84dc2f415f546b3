// The tree of the four-level menu, up to 12 lines a level. `index` holds 1..4 indices, each 1..12:
// the place in the tree, their count is the level. Sub-lines belong to the index, not to the text
// of the line above them. The tree owns the records; a pointer to one holds until gx_clear_menus or
// gx_read_menu.
#pragma once

#include <span>
#include <string_view>

#include "gx/display/input/menu_state.h"

inline constexpr int gx_max_menu_levels = 4;

// Makes the record or replaces it. A display string above 18 characters is cut, one of either above
// 200 reported in the trace and taken for empty. A bad index stops with invalid_level.
void gx_def_menu_rec(std::span<const int> index, std::string_view str, bool cmd_on,
                     std::string_view cmd);
// The record; empty texts when absent or out of range (never stops).
gx_menu_rec_t gx_get_menu_rec(std::span<const int> index);
// Null when absent; a bad index stops with invalid_level.
gx_menu_rec_t* gx_ptrto_menu_rec(std::span<const int> index);
void gx_clear_menus();  // empties the tree and forgets the chosen lines
