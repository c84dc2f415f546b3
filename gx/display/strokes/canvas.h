// A picture of the window in memory, where strokes have coverage: what they cover of a pixel in
// part is mixed with what is there. A horizontal or vertical line covers whole pixels, the same
// ones as a stroke that the screen draws.
//
// The picture is divided into tiles, and each knows whether anything was drawn there since it was
// cleared and whether it changed since it was shown: a picture of lines costs what its lines cost,
// and only what has changed need be sent. All places are pixels of the window; what lies outside it
// is left out.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "gx/display/sheet/theme.h"
#include "gx/display/strokes/stroke_layers.h"

// A pixel: red, green and blue, 8 bits each, from the top down.
using gx_pixel_t = std::uint32_t;
constexpr gx_pixel_t gx_pixel(gx_rgb_t c) {
  return gx_pixel_t{c.red} << 16U | gx_pixel_t{c.green} << 8U | c.blue;
}

// How much of each pixel of a rectangle is covered, 0..255, row by row.
struct gx_coverage_t {
  int x = 0, y = 0;  // its top left, from the origin of what it shows
  int width = 0, height = 0;
  std::vector<std::uint8_t> rows;
};

struct gx_pixel_box_t {
  int x = 0, y = 0, width = 0, height = 0;
};

class gx_canvas_t {
 public:
  gx_canvas_t(int width, int height, gx_pixel_t ground);

  int width() const { return width_; }
  int height() const { return height_; }
  const gx_pixel_t* row(int y) const { return &pixels_[at(0, y)]; }
  gx_pixel_t pixel(int x, int y) const { return pixels_[at(x, y)]; }

  // --- drawing, within the clip box; at first that is the whole picture
  void clip(const gx_box16_t& box);
  // What is drawn is put over the picture by exclusive-or, without coverage: a second time takes it
  // away.
  void set_exclusive_or(bool on) { is_exclusive_or_ = on; }
  void box(gx_pixel_t color, const gx_pixel_box_t& box, int coverage = 255);
  // `dashes` as gx_dash_list has them, in pixels times the width.
  void line(gx_pixel_t color, std::span<const char> dashes, const gx_line16_t& line, int width);
  void arc(gx_pixel_t color, std::span<const char> dashes, const gx_arc16_t& arc, int width);
  void cover(gx_pixel_t color, const gx_coverage_t& coverage, int x, int y);

  // --- the rest does not ask for the clip box
  void clear(const gx_pixel_box_t& box);
  void set_ground(gx_pixel_t ground);  // another one clears the whole picture
  std::vector<gx_pixel_t> copy(const gx_pixel_box_t& box) const;  // within the picture
  void put(const gx_pixel_box_t& box, std::span<const gx_pixel_t> pixels);

  // Calls show(box) for boxes that together hold all that changed since the last time, and no more
  // than about that.
  template <typename Show>
  void show_changes(Show show) {
    std::vector<gx_pixel_box_t> boxes = take_changes();
    for (const auto& box : boxes) show(box);
  }
  // The window has lost what is in the box.
  void forget_shown(const gx_pixel_box_t& box);

 private:
  static constexpr int tile_width = 64, tile_height = 16;
  struct tile_t {
    std::uint64_t shown = 0;  // a digest of what the window has; 0: not known
    bool is_ground = true;    // all of it
    bool is_changed = true;   // maybe
  };
  struct point_t {
    double x = 0, y = 0;
  };

  std::size_t at(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
  }
  gx_pixel_box_t inside(const gx_pixel_box_t& box) const;   // the picture
  gx_pixel_box_t clipped(const gx_pixel_box_t& box) const;  // and the clip box
  template <typename Visit>
  void visit_tiles(const gx_pixel_box_t& box, Visit visit);
  void touch(const gx_pixel_box_t& box);
  void mix(int x, int y, gx_pixel_t color, int coverage);
  void solid_line(gx_pixel_t color, point_t a, point_t b, double width);
  void slanted_line(gx_pixel_t color, point_t a, point_t b, double width);
  void ring(gx_pixel_t color, const gx_arc16_t& arc, double from, double extent, double width);
  std::vector<gx_pixel_box_t> take_changes();
  std::uint64_t digest(const gx_pixel_box_t& box) const;

  int width_, height_, columns_, rows_;
  gx_pixel_t ground_;
  bool is_exclusive_or_ = false;
  gx_pixel_box_t clip_;
  std::vector<gx_pixel_t> pixels_;
  std::vector<tile_t> tiles_;
};
