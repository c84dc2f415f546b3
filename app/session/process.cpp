#include "app/session/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <new>

#include "gx/text/messages/front.h"
#include "gx/text/messages/status.h"

namespace {
// What is open is closed with what it holds.
void end_without_memory() {
  std::set_new_handler(nullptr);
  gx_end_process("\n !! Unrecoverable Error : no memory left ", gx_front().stop_status);
}

// No file of a session takes the place of a standard stream that the caller has closed: one that
// can neither be read nor written does, so that using it is an error.
void hold_standard_streams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    [[maybe_unused]] const int held = open("/dev/null", O_PATH);
  }
}
}  // namespace

void kv_prepare_process() {
  hold_standard_streams();
  std::set_new_handler(end_without_memory);
}
