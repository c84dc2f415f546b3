// The dashes of lines: lengths of what is drawn and left out, in turn. None is a solid line.
#pragma once

#include <span>

// By list, 0..gx_nb_of_dash_lists - 1: of lines on the sheet, then of borders.
std::span<const char> gx_dash_list(int list);
