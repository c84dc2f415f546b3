// The panes of the window: the sheet, below it the list and the context viewport, and the command
// line. The list may have more lines, in letters that leave room for 100 in a line, and the place
// of the context viewport.
#pragma once

inline constexpr int kv_least_lines = 7, kv_most_lines = 40;

struct kv_panes_t {
  int lines = kv_least_lines;  // of the list; as many of them are shown as leave the sheet its half
  bool has_context = true;
};
const kv_panes_t& kv_panes();
// From now on; whoever asks draws the window again.
void kv_set_panes(const kv_panes_t& panes);
// Places them again: the window may have another size.
void kv_place_panes();
