// The flat nets that HIGhlight marks: on each sheet from the top down to the one in view, and on
// the sheet of VIEw SHEet, there wherever any use of the sheet has them.
#pragma once

#include <cstdint>

#include "app/find/expanded.h"

// Marks a flat net from now on, also after it was expanded anew; pictures are not drawn again. In
// colour 1..gx_nb_of_highlights; 0: in one that no other net has, as long as there is one, where
// the theme has several, else in the first.
void kv_highlight(const kv_expanded_t& expanded, std::int32_t net, int color);
void kv_highlight_off();
