// The moves that keys make: panning a picture, and stepping the pointer or a text.
#pragma once

#include <cstdint>
#include <string_view>

struct kv_move_t {
  std::string_view word;    // of the command, without the blanks around it
  int dx = 0, dy = 0;       // direction on the screen; y grows downwards
  std::int32_t amount = 0;  // design units
  bool is_cursor = false;   // the pointer moves, not the picture
};

// The move of a command word "$CU1", "$VPTL20", ...; nullptr when there is none. Letters in any
// case; the last character of a seven character word is free.
const kv_move_t* kv_find_move(std::string_view word);

// Makes the move in the viewport under the pointer (gx_vext.viewport_id).
void kv_make_move(const kv_move_t& move);
