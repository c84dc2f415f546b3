// What the mouse does by itself, beside the commands bound to its buttons: a click of button 1
// selects what is under the pointer, a double click walks down into a block, with Shift up again,
// on a name in the list it goes to what has that name (FINd PATh), and button 2 with Shift pans the
// picture.
//
// Clicks have these meanings while a drag with button 1 zooms, that is while its release runs VIEw
// AREa; another binding has the button to itself.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "gx/display/events.h"

// The pan in progress.
struct kv_gestures_t {
  gx_vpid_t panned = 0;  // viewport; 0: none
  gx_point16_t from;     // pointer of the last event
};

// The command that goes to what a line of the list names: FINd PATh for a path, SHOw FINding for
// the head of a finding. Empty when it names neither.
std::string kv_place_of_line(std::string_view line);
// The same for the line under a window pixel; empty elsewhere than in the list.
std::string kv_place_at(gx_point16_t pixel);

// True when the event begins, moves or ends a pan: nothing else is to be done about it.
bool kv_pan(kv_gestures_t& gestures, const gx_event_t& event);

// Whether button 1 over the list is such a click, and runs no command that is bound to it.
bool kv_clicks_list(const gx_event_t& event);

// After the release of button 1. `run` runs a command.
void kv_click(const gx_event_t& event, const std::function<void(std::string_view)>& run);
