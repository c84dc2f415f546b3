// The list viewport: the visible lines of the message list.
#pragma once

void gx_upd_display_list(bool up, int lines = 1);  // scrolls one line back (up) or forward
void gx_regen_display_list();  // draws the visible lines again; does nothing without a display
