// The buttons of the mouse: the commands bound to them, at once or for drags only, and their clicks
// (app/session/input/gestures.h says what these mean).
#pragma once

#include <functional>
#include <string_view>

#include "gx/display/input/events.h"

// A press or a release. `run` runs a command with the viewport under the pointer selected.
void kv_button(const gx_event_t& event, const std::function<void(std::string_view)>& run);
// The pointer has moved: what is bound for a drag begins when it has left the place of the press.
void kv_follow_drag(const gx_event_t& event, const std::function<void(std::string_view)>& run);
