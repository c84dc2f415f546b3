// Values on the sheet in view: beside nets and devices, and as colours of the wires, for the
// instance that the user has walked to.
#pragma once

#include "app/values/values_state.h"

// What is shown from now on; nothing when it has none. Pictures are not drawn again.
void kv_show_values(const kv_values_shown_t& shown);

// Draws the views again, where values are shown in them: x or the results have changed.
void kv_redraw_values();
