// How many characters of a line the list viewport shows: 60, or as many as its letters leave room
// for.
#pragma once

#include <cstddef>

int gx_list_width();
void gx_set_list_width(int columns);  // 20..199
bool gx_list_is_plain();              // it has the letters of the command line
// Where texts that are reported in several lines are broken.
std::size_t gx_list_break();
