// The one wait of the program: for whatever comes first.
#pragma once

#include <span>

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
