#include "platform/stoppable_input.h"

#include <memory>
#include <utility>

#include "platform/wait.h"

namespace {

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

x_file x_stoppable_input(x_descriptor input, x_stop_asked_t stop_asked, int look_ms) {
  auto owned = std::make_unique<input_t>(input_t{std::move(input), std::move(stop_asked), look_ms});
  cookie_io_functions_t calls{};
  calls.read = read_input;
  calls.close = close_input;
  x_file stream(fopencookie(owned.get(), "r", calls));
  if (stream) owned.release();
  return stream;
}
