// The one wait of the program: for whatever comes first; and reading that it does not hold for
// ever.
#pragma once

#include <functional>
#include <span>

#include "platform/files.h"

// What ended a wait.
enum class x_waking { readable, timer, signal, failed };

struct x_woken_t {
  x_waking by = x_waking::timer;
  int descriptor = -1;  // the first of those given that can be read, or has ended; -1: none
};

// Waits until one of the descriptors can be read or has come to its end, until `ms` milliseconds
// have passed (-1: for ever), or until a signal to end comes (platform/stop_signals.h); other
// signals do not end it. A signal that came since the last wait ends it at once, a signal that has
// already ended one wait no other: who waits again knows of it. Descriptors below 0 are left out.
x_woken_t x_wait(std::span<const int> descriptors, int ms);

// Asked again and again while something is waited for; true ends the waiting.
using x_stop_asked_t = std::function<bool()>;

// A stream of what the descriptor gives, until its end or until `stop_asked` says so: then the
// stream ends. It is asked whenever a signal to end comes (platform/stop_signals.h), and every
// `look_ms` milliseconds; -1: no more often. nullptr when there is no memory.
x_file x_stoppable_input(x_descriptor input, x_stop_asked_t stop_asked, int look_ms);
