// The date of the package: UTC, every fourth year a leap year.
#pragma once

#include <cstdint>

struct gx_date_t {
  std::int16_t day = 0, month = 0, year = 0, hour = 0, minute = 0;
};

// The date now; all zero, with a message, when the clock cannot be read.
gx_date_t gx_get_date();

// The date of a time in seconds since 1970.
gx_date_t gx_date_of(std::int64_t seconds);
