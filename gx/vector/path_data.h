// Shapes as the data of SVG paths, in hundredths of design units with no more decimals than needed.
#pragma once

#include <string>

#include "gx/picture/shape.h"

// What one path has: strokes of a colour 0..7, a dash style (0: solid) and a width, or a filled
// colour.
struct gx_look_t {
  int color = 0, style = 0, width = 1;
  bool filled = false;
  friend bool operator==(const gx_look_t&, const gx_look_t&) = default;
};
gx_look_t gx_look_of(const gx_shape_t& shape);

// Whether the shape has an outline: no text, no page, no mark of the screen, not too few points.
bool gx_has_path(const gx_shape_t& shape);

class gx_path_data {
 public:
  // Appends a shape that has a path, with its points relative to an origin.
  void add(const gx_shape_t& shape, gx_pointreal_t origin = {});
  const std::string& text() const { return path_; }  // the attribute "d"
  void clear() { path_.clear(); }

 private:
  void add_point(bool is_next, gx_pointreal_t p);
  void add_arc_to(gx_pointreal_t p, std::int32_t radius, bool is_large, bool is_clockwise);
  void add_box(gx_pointreal_t p, gx_pointreal_t q);
  void add_circle(gx_pointreal_t centre, std::int32_t radius);
  void add_arc(const gx_shape_t& arc);
  void append(std::int32_t x, std::int32_t y);

  std::string path_;
  gx_pointreal_t origin_, last_;  // of the shape under way; the last point
};
