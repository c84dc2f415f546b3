// The constructors of the primitives, inside the bracket (bracket.h). For editors and for gxmake;
// KIVO itself only reads.
//
// Points are given in the father's coordinates; a primitive's origin becomes its first point, its
// box is returned in those coordinates, and the boxes of its fathers grow.
#pragma once

#include <span>
#include <string_view>

#include "gx/edit/bracket.h"

gx_boundsreal_t gx_line_2dreal(int style, int color, int width, gx_pointreal_t pt1,
                               gx_pointreal_t pt2);
gx_boundsreal_t gx_rectangle_2dreal(int style, int color, gx_pointreal_t pt1, gx_pointreal_t pt2,
                                    bool filled, int fill_color);
gx_boundsreal_t gx_circle_real(int style, int color, bool filled, gx_pointreal_t center,
                               std::int32_t radius);
// An arc from pt1 over pt2 to pt3. Angles are counterclockwise on the screen, angle1 0..23039,
// angle2 above it by the extent. Points on one line give a straight arc: radius 0, box of the
// points.
gx_boundsreal_t gx_arc3p_2dreal(gx_pointreal_t pt1, gx_pointreal_t pt2, gx_pointreal_t pt3,
                                int style, int color);
// The points, circle and angles of such an arc in its record; returns the box.
gx_boundsreal_t gx_arc_through(gx_object_arc_rec_t& arc, gx_pointreal_t pt1, gx_pointreal_t pt2,
                               gx_pointreal_t pt3);
gx_boundsreal_t gx_grid_real(gx_pointreal_t corner, gx_pointreal_t opposite,
                             std::int32_t step_point, std::int32_t step_pin, bool grid_on,
                             bool snap_on);
gx_boundsreal_t gx_polyline5_2dreal(int style, int color, std::span<const gx_pointreal_t> points);
gx_boundsreal_t gx_polyline_2dreal(int style, int color, std::span<const gx_pointreal_t> points);
void gx_tag(std::string_view name, std::string_view value);

// How a property's text looks: quarter turns, and its switches.
struct gx_property_look_t {
  std::int32_t height = 2500;
  int rotate = 0;
  int color = 7;
  bool fixed = true;
  bool visible = true;
};
gx_boundsreal_t gx_property_2dreal(std::string_view name, std::string_view value,
                                   gx_pointreal_t position, const gx_property_look_t& look);

// The vertices and segments of nets. An end of a segment is a vertex or a pin property family.
void gx_vertex_2dreal(std::int32_t x, std::int32_t y);
gx_boundsreal_t gx_segment(int style, int color, int width, int vertex1, int vertex2);
