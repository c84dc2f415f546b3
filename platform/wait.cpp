#include "platform/wait.h"

#include <poll.h>

#include <cerrno>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "platform/stop_signals.h"

namespace {

using clock_type = std::chrono::steady_clock;
using std::chrono::milliseconds;

struct input_t {
  x_descriptor descriptor;
  x_stop_asked_t stop_asked;
  int look_ms;
};

ssize_t read_input(void* cookie, char* buffer, std::size_t size) {
  const auto& input = *static_cast<input_t*>(cookie);
  while (!input.stop_asked()) {
    const int descriptor = input.descriptor.get();
    const auto [by, readable] = x_wait({&descriptor, 1}, input.look_ms);
    if (by == x_waking::failed) return -1;
    if (by == x_waking::readable) return xfread(readable, buffer, size);
  }
  return 0;
}

int close_input(void* cookie) {
  delete static_cast<input_t*>(cookie);
  return 0;
}

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

x_file x_stoppable_input(x_descriptor input, x_stop_asked_t stop_asked, int look_ms) {
  auto owned = std::make_unique<input_t>(input_t{std::move(input), std::move(stop_asked), look_ms});
  cookie_io_functions_t calls{};
  calls.read = read_input;
  calls.close = close_input;
  x_file stream(fopencookie(owned.get(), "r", calls));
  if (stream) owned.release();
  return stream;
}
