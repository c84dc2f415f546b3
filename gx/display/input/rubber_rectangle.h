// The rubber rectangle from pixel_ptr1 to the pointer.
#pragma once

#include "gx/text/records.h"

void gx_rectangle_action();  // it follows the pointer
void gx_rectangle_erase();   // takes it off the screen; the next move shows it again
gx_pointreal_t gx_inq_base_point();
