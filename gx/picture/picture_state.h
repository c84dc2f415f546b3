// The state of the picture room, a part of gx_vext.
#pragma once

#include <cstdint>

struct gx_picture_state_t {
  std::int32_t dim_pin = 1000;  // half size of a pin's diamond, design units
};
