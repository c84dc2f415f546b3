// Single objects of a plot that is open (gx/display/plot_sheet.h). `inst_id` is the instance that
// places the object, 0 for none.
#pragma once

#include <cstdint>

#include "gx/db/ids.h"

void gx_plotfile_prim(gx_file_index_t file_index, int object_id, int inst_id);
void gx_plotfile_pin(gx_file_index_t file_index, int pin_id, int inst_id);
void gx_plotfile_net(gx_file_index_t file_index, int net_id);
// A filled square of half size `half_size` around (x, y), design units.
void gx_plotfile_dot(std::int32_t page_height, std::int32_t x, std::int32_t y,
                     std::int32_t half_size);
