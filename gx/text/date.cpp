#include "gx/text/date.h"

#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {
constexpr std::int64_t day_seconds = 86400;
constexpr std::int64_t from_1970_to_1972 = 63072000;
constexpr std::int64_t cycle_seconds = 126230400;  // a leap year and three common years
constexpr std::int64_t leap_seconds = 31622400;
constexpr std::int64_t common_seconds = 31536000;
constexpr std::array<int, 12> month_days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
}  // namespace

gx_date_t gx_date_of(std::int64_t seconds) {
  std::int64_t rest = seconds - from_1970_to_1972;
  std::int64_t cycle = rest / cycle_seconds;
  if (rest % cycle_seconds < 0) --cycle;  // before 1972
  rest -= cycle * cycle_seconds;
  std::int64_t year = 1972 + 4 * cycle;
  const bool leap = rest < leap_seconds;
  if (!leap) {
    rest -= leap_seconds;
    year += 1 + rest / common_seconds;
    rest %= common_seconds;
  }
  auto day = static_cast<int>(rest / day_seconds);
  std::size_t month = 0;
  const auto days_of = [&](std::size_t m) { return month_days[m] + (m == 1 && leap ? 1 : 0); };
  while (day >= days_of(month)) day -= days_of(month++);

  const auto second = rest % day_seconds;
  const auto short_of = [](auto v) { return static_cast<std::int16_t>(v); };
  return {short_of(day + 1), short_of(month + 1), short_of(year), short_of(second / 3600),
          short_of(second % 3600 / 60)};
}

gx_date_t gx_get_date() {
  timeval now{};
  if (const int res = gettimeofday(&now, nullptr); res != 0) {
    std::printf(" !! error in gettimeofday : res : %2d\n", res);
    return {};
  }
  return gx_date_of(now.tv_sec);
}
