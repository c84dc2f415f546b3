// The four-level menu: its tree, its file and its drawing. Up to 12 lines a level.
#pragma once

#include <span>
#include <string_view>

#include "gx/display/menu_state.h"
#include "gx/display/screen_state.h"

inline constexpr int gx_max_menu_levels = 4;

// --- the tree (menu_tree.cpp). `index` holds 1..4 indices, each 1..12: the place in the tree,
// their count is the level. Sub-lines belong to the index, not to the text of the line above them.
// The tree owns the records; a pointer to one holds until gx_clear_menus or gx_read_menu.

// Makes the record or replaces it. A display string above 18 characters is cut, one of either above
// 200 told in the trace and taken for empty. A bad index stops with invalid_level.
void gx_def_menu_rec(std::span<const int> index, std::string_view str, bool cmd_on,
                     std::string_view cmd);
// The record; empty texts when absent or out of range (never stops).
gx_menu_rec_t gx_get_menu_rec(std::span<const int> index);
// Null when absent; a bad index stops with invalid_level.
gx_menu_rec_t* gx_ptrto_menu_rec(std::span<const int> index);
void gx_clear_menus();  // empties the tree and forgets the chosen lines

// --- the menu file (menu_file.cpp): one entry a line, its place given by the order of the lines.
// Errors are counted and shown with the line; what was read before them stays defined. A file that
// cannot be opened is told by its name and leaves the tree as it was.
void gx_read_menu(std::string_view path);  // replaces the tree; nothing for an empty path
void gx_print_menu(std::string_view path);

// --- the picture (menu_draw.cpp), in pixels of the window. Nothing without a display; a call that
// does not fit the level shown stops with viewport_id_invalid. Level 1 at the viewport's top left
// plus `position`; a deeper level (2..4) beside its parent, showing the sub-lines of the chosen
// lines. Each moves the pointer into the new level.
void gx_draw_menu1(gx_vpid_t vpid, gx_point16_t position);
void gx_draw_menu(gx_vpid_t vpid, int level);
void gx_select_line_menu(gx_vpid_t vpid, int level);  // moves the highlight to menuline_lev
void gx_restore_menu(gx_vpid_t vpid, int level);      // closes the deepest level
void gx_close_menus(gx_vpid_t vpid);                  // closes all levels
// Takes the levels shown off the screen while something draws under them, and shows them again if
// they are hidden and still open.
void gx_hide_menus();
void gx_redraw_menus(gx_vpid_t vpid);
// The line of a level under the pixel row `y`, 1..12.
int gx_menu_line_at(int level, int y);
