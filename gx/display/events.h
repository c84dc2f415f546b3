// Input: the next X event as one of a small set of kinds.
#pragma once

#include <cstdint>

#include "gx/text/state.h"

struct gx_event_t {
  int kind = 15;                // 0..15
  std::uint32_t code = 0;       // keysym, or menu level
  std::uint32_t modifiers = 0;  // reduced: 1 shift, 4 control, 8 alt
  gx_point16_t pixel;
  std::uint32_t time = 0;       // server milliseconds
};

// Blocks until one event has been read.
gx_event_t gx_input_event_wait();
// Removes a queued key press (kind 0) or release (kind 1) with that keysym and modifiers; false
// when there is none, or without a display.
bool gx_find_event(int kind, std::uint32_t keysym, std::uint32_t modifiers);
void gx_input_enable(long mask);

// --- editing of the command line by the pointer
void gx_pixel_pos_action();
void gx_again_action(gx_vpid_t vpid, gx_point16_t pixel);
void gx_backsp_action(gx_vpid_t vpid, gx_point16_t pixel);
void gx_chardel_action(gx_vpid_t vpid, gx_point16_t pixel);
void gx_rectangle_action();
gx_pointreal_t gx_inq_base_point();
