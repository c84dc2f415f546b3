// The moves that keys make: panning a picture, and stepping the pointer or a text.
#pragma once

#include <cstdint>
#include <string_view>

#include "gx/display/screen_state.h"

struct kv_move_t {
  std::string_view word;    // of the command, without the blanks around it
  int dx = 0, dy = 0;       // direction on the screen; y grows downwards
  std::int32_t amount = 0;  // design units
  bool is_cursor = false;   // the pointer moves, not the picture
};

// The move of a command word "$CU1", "$VPTL20", ...; nullptr when there is none. Letters in any
// case; the last character of a seven character word is free.
const kv_move_t* kv_find_move(std::string_view word);

// Draws a picture anew whose scale is num / den of what it was, the point under the pixel staying
// where it is, or that has gone along by pixels. Nothing in a viewport without a picture.
void kv_zoom_at(gx_vpid_t vpid, gx_point16_t pixel, int num, int den);
void kv_pan_by(gx_vpid_t vpid, int dx, int dy);

// Makes the move in the viewport under the pointer (gx_vext.viewport_id).
void kv_make_move(const kv_move_t& move);
