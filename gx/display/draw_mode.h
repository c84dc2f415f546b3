// Drawing and erasing are one operation with another colour.
#pragma once

enum class gx_draw_mode { draw, erase };
