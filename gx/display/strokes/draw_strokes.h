// What the drawing rooms share: where a picture is drawn, and strokes and outlines of pixels.
#pragma once

#include <span>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/db/object_records.h"
#include "gx/display/screen_state.h"
#include "gx/display/strokes/pen.h"

// Drawing and erasing are one operation with another colour.
enum class gx_draw_mode { draw, erase };

// Where and how a picture is drawn.
struct gx_picture_t {
  gx_vpid_t vpid = 0;
  gx_file_index_t file_index = 0;
  const gx_file_gene_recf_t* file = nullptr;
  gx_draw_mode mode = gx_draw_mode::draw;

  bool erases() const { return mode == gx_draw_mode::erase; }
};

// The picture of a file in the selected viewport; any other viewport id is traced with the
// operation and the object, and stops with viewport_id_invalid.
gx_picture_t gx_picture_of(gx_vpid_t vpid, gx_file_index_t file_index, int object_id,
                           gx_draw_mode mode, const char* operation);

// An item's colour: the background when erasing, the selection colour, or its own.
int gx_drawn_color(const gx_picture_t& picture, int own, bool selected);

// --- clipped strokes between window pixels
void gx_draw_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b);
void gx_draw_polyline(gx_vpid_t vpid, int color, int style, std::span<const gx_point16_t> points);
// `width` (1..255) parallel thin lines, some more for a slanted line.
void gx_draw_thick_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b,
                        int width);

// A filled square of side 2 * half_size around the pixel, when it lies whole in the clip window.
void gx_display_dot(gx_vpid_t vpid, gx_point16_t pixel, int half_size, int color);
// `pixel_width` nested outlines.
void gx_display_rectangle(gx_point16_t p1, gx_point16_t p2, int style, int color, int pixel_width);
void gx_display_rectangle_dot(gx_point16_t p1, gx_point16_t p2, int color, int dot_size);
