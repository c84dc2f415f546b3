// The four-level menu: its tree, its file and its drawing.
#pragma once

#include <span>
#include <string_view>

#include "gx/text/state.h"

// `index` holds 1..4 indices, each 1..12: the place in the tree, its size the level.
void gx_def_menu_rec(std::span<const int> index, std::string_view str, bool cmd_on,
                     std::string_view cmd);
// The record; empty texts when absent or out of range (never stops).
gx_menu_rec_t gx_get_menu_rec(std::span<const int> index);
gx_menu_rec_t* gx_ptrto_menu_rec(std::span<const int> index);
void gx_clear_menus();

void gx_read_menu(std::string_view path);   // replaces the tree
void gx_print_menu(std::string_view path);

// Level 1 at the viewport's top left plus `position`; a deeper level (2..4) beside its parent,
// showing the sub-lines of the chosen lines.
void gx_draw_menu1(gx_vpid_t vpid, gx_point16_t position);
void gx_draw_menu(gx_vpid_t vpid, int level);
void gx_select_line_menu(gx_vpid_t vpid, int level);
void gx_restore_menu(gx_vpid_t vpid, int level);
