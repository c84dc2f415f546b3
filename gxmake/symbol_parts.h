// What a symbol file and the copy of a symbol on a sheet have in common.
#pragma once

#include "gxmake/object_tree.h"

// The body (graphics and properties) and the pin family, under a component or a symbol object.
void gxm_add_symbol_contents(gxm_tree_t& tree, const gxm_symbol_t& symbol, int father);
