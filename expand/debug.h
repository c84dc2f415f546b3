// The engine's debug trace, and its fatal stop.
#pragma once

#include <cstdio>

extern std::FILE* kv_debf;  // the engine's debug file; owned by the application; may be null

// printf into the engine's debug file; lost while none is open.
[[gnu::format(printf, 1, 2)]] void kv_debug(const char* format, ...);

// The fatal stop of the engine: writes to both debug files, gives back what the process holds, says
// so on standard output, and ends the process with a failure status.
[[noreturn]] void kv_error_stop();
