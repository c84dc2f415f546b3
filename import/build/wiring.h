// The wires of one net, cut where they meet: what a net object of a sheet holds.
#pragma once

#include <span>
#include <vector>

#include "import/drawing/drawing.h"

struct gxi_end_t {
  gx_pointreal_t at{};
  int pin = -1;    // of the pins given; -1: a vertex
  int degree = 0;  // pieces that end here
};

struct gxi_piece_t {
  std::size_t end1 = 0, end2 = 0;
  std::uint8_t color = gxm_cyan, width = 1;
};

struct gxi_wiring_t {
  std::vector<gxi_end_t> ends;
  std::vector<gxi_piece_t> pieces;
};

// `pins` are the places of the net's pins; the first of several at one place is the end there.
// Pieces that lie on one another are drawn once.
gxi_wiring_t gxi_wire(std::span<const gxi_segment_t> segments,
                      std::span<const gx_pointreal_t> pins);
