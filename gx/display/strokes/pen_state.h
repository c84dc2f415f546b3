// What the pen and smooth pictures share: where strokes go, and the last setting of the screen.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "gx/display/strokes/canvas.h"
#include "gx/display/strokes/stroke_layers.h"

struct gx_kept_area_t {
  gx_pixel_box_t box;
  std::vector<gx_pixel_t> pixels;
};

struct gx_pen_t {
  int depth = 0;  // of nested batches
  gx_stroke_layers_t strokes;
  int line_width = 1;  // pixels

  bool is_exclusive_or = false;
  bool clip_known = false;
  gx_box16_t clip;

  // Of smooth pictures.
  bool is_smooth = false;
  int held = 0;  // nested pictures that are to appear at once
  std::unique_ptr<gx_canvas_t> canvas;
  std::map<int, gx_kept_area_t> kept_areas;  // under each menu level
};

gx_pen_t& gx_pen();
