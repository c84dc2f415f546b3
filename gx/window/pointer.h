// The pointer of the window: gx/display/input/cursor.h decides its shape and place.
#pragma once

#include "gx/text/records.h"

void gx_make_pointers();
void gx_show_pointer(int pattern);  // 1..12
void gx_hide_pointer();
void gx_put_pointer(gx_point16_t to);
// Only while it is within `margin` pixels of `from`, which the server looks at: what a user does
// meanwhile is not undone.
void gx_put_pointer_near(gx_point16_t to, gx_point16_t from, int margin);
