// Where texts have room on a picture: what is taken, in cells of some pixels.
#pragma once

#include <vector>

#include "gx/text/records.h"

class kv_text_room_t {
 public:
  explicit kv_text_room_t(const gx_bounds16_t& picture);  // pixels, both corners inside

  // Takes a box, as far as it lies in the picture.
  void take(const gx_bounds16_t& box);
  // The same if all of it lies in the picture and nothing is taken there; else false.
  bool take_free(const gx_bounds16_t& box);

 private:
  struct cells_t {
    int x1, y1, x2, y2;  // none when empty
  };
  cells_t cells_of(const gx_bounds16_t& box) const;

  gx_bounds16_t picture_;
  int columns_, rows_;
  std::vector<bool> taken_;
};
