// The box beside the pointer that rests on something of the sheet in view. It covers nothing under
// the pointer, and goes away with the next event; the pixels under it come back as they were.
#pragma once

#include "gx/display/input/events.h"

void kv_show_hints(bool on);
// The pointer rests there.
void kv_show_hint(gx_point16_t pixel);
void kv_hide_hint();
// All is drawn anew: there is nothing under it to put back.
void kv_forget_hint();
