#include "platform/stoppable_input.h"

#include <poll.h>

#include <cerrno>
#include <iterator>
#include <memory>
#include <utility>

#include "platform/stop_signals.h"

namespace {

struct input_t {
  x_descriptor descriptor;
  x_stop_asked_t stop_asked;
  int look_ms;
};

ssize_t read_input(void* cookie, char* buffer, std::size_t size) {
  const auto& input = *static_cast<input_t*>(cookie);
  while (!input.stop_asked()) {
    pollfd places[] = {{input.descriptor.get(), POLLIN, 0}, {x_stop_descriptor(), POLLIN, 0}};
    // A signal that nobody took for an end would come at once again and again.
    const nfds_t count = x_stop_signal() == 0 ? std::size(places) : 1;
    if (poll(places, count, input.look_ms) < 0 && errno != EINTR) return -1;
    if (places[0].revents != 0) return xfread(input.descriptor.get(), buffer, size);
  }
  return 0;
}

int close_input(void* cookie) {
  delete static_cast<input_t*>(cookie);
  return 0;
}

}  // namespace

x_file x_stoppable_input(x_descriptor input, x_stop_asked_t stop_asked, int look_ms) {
  auto owned = std::make_unique<input_t>(input_t{std::move(input), std::move(stop_asked), look_ms});
  cookie_io_functions_t calls{};
  calls.read = read_input;
  calls.close = close_input;
  x_file stream(fopencookie(owned.get(), "r", calls));
  if (stream) owned.release();
  return stream;
}
