// The list viewport: the visible lines of the message list.
#pragma once

#include "gx/text/records.h"

void gx_upd_display_list(bool up, int lines = 1);  // scrolls one line back (up) or forward
// The line of the list under a window pixel, from 1.
int gx_list_line_at(gx_point16_t pixel);
void gx_regen_display_list();  // draws the visible lines again; does nothing without a display
