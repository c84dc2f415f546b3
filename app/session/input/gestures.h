// What the mouse does by itself, beside the commands bound to its buttons: a click of button 1
// selects what is under the pointer, a double click walks down into a block, with Shift up again,
// on a name in the list it goes to what has that name (FINd PATh), and button 2 with Shift pans the
// picture.
//
// Clicks have these meanings while a drag with button 1 zooms, that is while its release runs VIEw
// AREa; another binding has the button to itself.
//
// A button whose commands are bound as "$DRAG command" runs them for drags only. Its click is free:
// that of button 1 echoes nothing but its SELect, those of buttons 2 and 3 show the menu, whose
// line the next click takes; on the command line button 2 pastes. "$DRAG $PAN" pans.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "app/state.h"
#include "gx/display/input/events.h"

inline constexpr std::uint32_t kv_shift_held = 1;  // of the modifiers of an event

// The command of a drag; nothing when the binding is none of that form.
std::optional<std::string_view> kv_drag_command(std::string_view binding);

// The command that goes to what a line of the list names: FINd PATh for a path, SHOw FINding for
// the head of a finding. Empty when it names neither.
std::string kv_place_of_line(std::string_view line);
// The same for the line under a window pixel; empty elsewhere than in the list.
std::string kv_place_at(gx_point16_t pixel);

// True when the event begins, moves or ends a pan: nothing else is to be done about it.
bool kv_pan(const gx_event_t& event);
// Begins a pan at the pixel; the viewport under it shows a picture.
void kv_begin_pan(gx_vpid_t vpid, gx_point16_t pixel);

// Whether button 1 over the list is such a click, and runs no command that is bound to it.
bool kv_clicks_list(const gx_event_t& event);

// After the release of button 1. `run` runs a command.
void kv_click(const gx_event_t& event, const std::function<void(std::string_view)>& run);

// Ends what is half done: a drag, a rectangle, a pan, a menu, the command line.
void kv_end_gestures();
