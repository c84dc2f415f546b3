// The list viewport: the visible lines of the message list.
#pragma once

#include <string_view>

#include "gx/text/records.h"

// The letters of the list: their width, with what is between them, in pixels.
int gx_list_step();

void gx_upd_display_list(bool up, int lines = 1);  // scrolls one line back (up) or forward
// The line of the list under a window pixel, from 1.
int gx_list_line_at(gx_point16_t pixel);
void gx_regen_display_list();  // draws the visible lines again; does nothing without a display
// The word of the visible lines that a window pixel is on: what lies between blanks and quotes; ""
// when there is none.
std::string_view gx_list_word_at(gx_point16_t pixel);
