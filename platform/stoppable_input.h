// Reading that a wait does not hold for ever.
#pragma once

#include <functional>

#include "platform/files.h"

// Asked again and again while something is waited for; true ends the waiting.
using x_stop_asked_t = std::function<bool()>;

// A stream of what the descriptor gives, until its end or until `stop_asked` says so: then the
// stream ends. It is asked whenever a signal to end comes (platform/stop_signals.h), and every
// `look_ms` milliseconds; -1: no more often. nullptr when there is no memory.
x_file x_stoppable_input(x_descriptor input, x_stop_asked_t stop_asked, int look_ms);
