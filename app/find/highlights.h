// The flat nets that HIGhlight marks, and what has changed: on each sheet from the top down to the
// one in view, and on the sheet of VIEw SHEet, where a net is marked if it is on any
// instance of the sheet.
#pragma once

#include <cstdint>
#include <vector>

#include "app/find/expanded.h"
#include "app/find/find_state.h"

// Marks a flat net from now on, also after it was expanded anew; pictures are not drawn again. In
// colour 1..gx_nb_of_highlights; 0: in one that no other net has, as long as there is one, where
// the theme has several, else in the first.
void kv_highlight(const kv_expanded_t& expanded, std::int32_t net, int color);
// Marks these and none that were given before: nets wherever they are drawn; instances and blocks,
// and on the sheets above the blocks that they are in.
void kv_highlight_changed(std::vector<kv_changed_object_t> changed);
void kv_highlight_off();  // no more marks of either
