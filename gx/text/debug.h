// The debug trace of the package. Lines go to gx_session.debugfile; while none is open they are
// lost.
#pragma once

#include <string_view>

// printf into the debug file.
[[gnu::format(printf, 1, 2)]] void gx_debug(const char* format, ...);

// The text followed by a line end.
void gx_debug_line(std::string_view text);
