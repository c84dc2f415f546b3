// The pen: every stroke of the program goes through it. It collects lines, arcs and filled boxes by
// colour and line style and sends each group with one request, so that a sheet costs some dozen
// requests instead of one an object.
//
// All values are window pixels. What is drawn later lies on top. Without a display nothing is sent.
#pragma once

#include "gx/display/strokes/stroke_layers.h"
#include "gx/text/records.h"

// While one of these lives, strokes are kept; when the outermost ends, they are sent and flushed.
class gx_batch_t {
 public:
  gx_batch_t();
  ~gx_batch_t();
  gx_batch_t(const gx_batch_t&) = delete;
  gx_batch_t& operator=(const gx_batch_t&) = delete;
};

// Colours are 0..7 and those of roles (gx_color_of); others are taken as 7. Styles are 0..4;
// `border` picks the dashes of the borders.
void gx_pen_line(int color, int style, gx_line16_t line, bool border = false);
void gx_pen_arc(int color, int style, const gx_arc16_t& arc);
void gx_pen_box(int color, int x, int y, int width, int height);

// Sends what is kept.
void gx_pen_flush();

// Between these two nothing is shown of a smooth picture; false where strokes are not smooth.
bool gx_pen_hold();
void gx_pen_release();

// What a menu level covers, kept and put back.
void gx_pen_keep_area(int level, int x, int y, int width, int height);
void gx_pen_put_area_back(int level, int x, int y, int width, int height);

// Sends what is kept, then clips what follows to the box, or clears the box to the window's
// background. An empty box clears nothing.
void gx_pen_clip(int x, int y, int width, int height);
void gx_pen_clear(int x, int y, int width, int height);

// The pixel operation of what follows: copy, or exclusive-or (the rubber rectangle).
void gx_pixel_op_replace();
void gx_pixel_op_xor();

// What is kept at the moment; for those who want to see what was drawn.
const gx_stroke_layers_t& gx_pen_kept();
