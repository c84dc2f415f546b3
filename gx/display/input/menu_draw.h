// The picture of the menu, in pixels of the window. Nothing without a display; a call that
// does not fit the level shown stops with viewport_id_invalid. Level 1 at the viewport's top left
// plus `position`; a deeper level (2..4) beside its parent, showing the sub-lines of the chosen
// lines. Each moves the pointer into the new level.
#pragma once

#include "gx/display/screen_state.h"

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
