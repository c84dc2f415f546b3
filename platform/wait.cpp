#include "platform/wait.h"

#include <poll.h>

#include <cerrno>
#include <chrono>
#include <vector>

#include "platform/stop_signals.h"

namespace {
using clock_type = std::chrono::steady_clock;
using std::chrono::milliseconds;
}  // namespace

x_woken_t x_wait(std::span<const int> descriptors, int ms) {
  std::vector<pollfd> places = {{x_stop_descriptor(), POLLIN, 0}};
  for (const int descriptor : descriptors) places.push_back({descriptor, POLLIN, 0});
  const auto end = clock_type::now() + milliseconds(ms);
  for (int left = ms;;) {
    const int ready = poll(places.data(), places.size(), left);
    if (ready < 0 && errno != EINTR) return {x_waking::failed};
    if (ready > 0 && places[0].revents != 0) {
      x_forget_stop_waking();
      return {x_waking::signal};
    }
    if (ready > 0) {
      for (const pollfd& place : places)
        if (place.revents != 0) return {x_waking::readable, place.fd};
    }
    if (ms < 0) continue;
    left = static_cast<int>(std::chrono::ceil<milliseconds>(end - clock_type::now()).count());
    if (left <= 0) return {x_waking::timer};
  }
}
