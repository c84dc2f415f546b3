// The tree of blocks in the left quarter of the window: the sheet in view marked, blocks with
// findings marked, a click opens and closes a block, with Shift all below it, a double click shows
// its sheet, the wheel scrolls, and what is typed with the pointer there is searched for.
#pragma once

#include <functional>
#include <string_view>

#include "gx/display/input/events.h"

using kv_run_t = std::function<void(std::string_view command)>;

void kv_show_tree(bool on);  // also anew, of the drawings as they are now
bool kv_tree_is_shown();
void kv_draw_tree();

// After a command: the marks follow the sheet in view and the findings.
void kv_follow_tree();

// True when the event was for the tree: nothing else is to be done about it.
bool kv_tree_gesture(const gx_event_t& event, const kv_run_t& run);
