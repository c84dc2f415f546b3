// What the drawing rooms share: one item's way from design units to clipped strokes.
#pragma once

#include <span>

#include "gx/db/file_records.h"
#include "gx/db/ids.h"
#include "gx/db/object_records.h"
#include "gx/display/draw_mode.h"
#include "gx/display/pen.h"
#include "gx/display/screen_state.h"

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

// The style of selected lines.
inline constexpr int gx_selected_style = 3;

// An item's colour: the background when erasing, the selection colour, or its own.
int gx_drawn_color(const gx_picture_t& picture, int own, bool selected);

// --- clipped strokes between window pixels
void gx_draw_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b);
void gx_draw_polyline(gx_vpid_t vpid, int color, int style, std::span<const gx_point16_t> points);
// `width` (1..255) parallel thin lines, some more for a slanted line.
void gx_draw_thick_line(gx_vpid_t vpid, int color, int style, gx_point16_t a, gx_point16_t b,
                        int width);
