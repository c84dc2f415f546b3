#include "platform/timing.h"

#include <sys/time.h>
#include <time.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {
constexpr std::int32_t max_delay_ms = 30000;

void check_delay(std::int32_t ms) {
  if (ms <= max_delay_ms) return;
  std::printf(" !! Error in xdelayms : TOO long : delayms = %d    ", ms);
  std::exit(1);
}
}  // namespace

void xdelayms(std::int32_t ms) {
  check_delay(ms);
  if (ms <= 0) return;
  timespec left{ms / 1000, (ms % 1000) * 1000000L};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

void xdelayms2(std::int32_t ms) { xdelayms(ms); }

x_timeval_record_t xtimems() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return {static_cast<std::int32_t>(now.tv_sec), static_cast<std::int32_t>(now.tv_usec)};
}

std::int32_t xdiftimems(std::int32_t sec, std::int32_t usec) {
  const x_timeval_record_t now = xtimems();
  return (now.tv_sec - sec) * 1000 + (now.tv_usec - usec) / 1000;
}
