// Delays and time stamps.
#pragma once

#include <cstdint>

struct x_timeval_record_t {
  std::int32_t tv_sec = 0, tv_usec = 0;
};

// Sleeps `ms` milliseconds, at most 30000; more is reported and ends the process with status 1.
void xdelayms(std::int32_t ms);
void xdelayms2(std::int32_t ms);

x_timeval_record_t xtimems();                                  // now
std::int32_t xdiftimems(std::int32_t sec, std::int32_t usec);  // milliseconds since then
