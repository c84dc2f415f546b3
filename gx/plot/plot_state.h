// The state of the plot room, a part of gx_vext.
#pragma once

#include <cstdint>

struct gx_plot_state_t {
  std::int32_t lpplot_scale = 1;  // of the plot that is open
};
