// The views that the edit viewport showed before the last zooms, pans, walks and jumps.
#pragma once

#include <optional>

#include "app/sheet/sheets_state.h"

// Keeps what is shown, before it changes; the last 20 are kept.
void kv_remember_view();

// Takes the last one that differs from what is shown; nothing when there is none left.
std::optional<kv_last_view_t> kv_take_last_view();
