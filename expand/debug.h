// The engine's debug trace. Lines go to kv_debf; while none is open they are lost.
#pragma once

// printf into the engine's debug file.
[[gnu::format(printf, 1, 2)]] void kv_debug(const char* format, ...);
