// Pictures that nobody sees: the one that is drawn at the moment, and what menu levels cover.
#pragma once

#include "gx/text/records.h"

bool gx_begin_picture();
void gx_end_picture(const gx_bounds16_t& shown);
void gx_keep_area(int level, int x, int y, int width, int height);
void gx_put_area_back(int level, int x, int y, int width, int height);
