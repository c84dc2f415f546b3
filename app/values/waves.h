// SHOw WAVes: waveforms in the small viewport, in place of its sheet.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "gx/display/input/events.h"

// The paths of flat nets, at most 16, whose waveforms are shown from now on, over the whole scale;
// those without a value are left out. False when none has one, or when the reading was stopped.
bool kv_show_waves(const std::vector<std::string>& paths);
// The viewport shows its sheet again.
void kv_hide_waves();
bool kv_waves_are_shown();

// Drawn again, where they are shown: x has moved, or the results have changed.
void kv_redraw_waves();

// The gestures: over the waves a click of button 1 sets x, a drag zooms into a stretch of time, the
// wheel zooms around the pointer, with Shift it moves along; over the sheet the wheel with Control
// moves x by a hundredth of the range, while values are shown. True when the event is one of these:
// nothing else is to be done about it. `run` runs a command.
bool kv_wave_gesture(const gx_event_t& event, const std::function<void(std::string_view)>& run);
