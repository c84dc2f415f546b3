// Strokes kept until they are sent. Those of one colour and dash list are kept together, as long as
// none comes to lie under a stroke that was made before it.
//
// The window is divided into tiles, and each tile knows the layer and colour of its topmost stroke.
// A stroke goes into the lowest layer above all strokes of other colours in the tiles that it
// touches, so that drawing the layers in their order shows what the single strokes would. Strokes
// of one colour may change places. A picture of some ten thousand strokes has a few layers where
// its objects stand apart, and more where they crowd.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "gx/text/at.h"
#include "gx/text/records.h"

inline constexpr int gx_nb_of_file_colors = 8;  // that a file has numbers for
inline constexpr int gx_nb_of_roles = 15;  // with colours of a theme (gx/display/sheet/theme.h)
inline constexpr int gx_nb_of_colors = gx_nb_of_file_colors + gx_nb_of_roles;
inline constexpr int gx_nb_of_styles = 5;  // 0 solid, 1..4 dashed
// The dashes of a line on the sheet, then those of a border.
inline constexpr int gx_nb_of_dash_lists = 2 * gx_nb_of_styles;

struct gx_line16_t {
  std::int16_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  friend bool operator==(const gx_line16_t&, const gx_line16_t&) = default;
};

// What an arc covers: the box of its full circle, the start angle and the extent, in 1/64 degree
// counterclockwise from three o'clock.
struct gx_arc16_t {
  int x = 0, y = 0, size = 0;
  int angle = 0, extent = 0;
};

struct gx_box16_t {
  std::int16_t x = 0, y = 0;
  std::uint16_t width = 0, height = 0;
  friend bool operator==(const gx_box16_t&, const gx_box16_t&) = default;
};

// Strokes of one colour and dash list in one layer.
struct gx_stroke_group_t {
  int color = 0, dashes = 0;
  std::vector<gx_line16_t> lines;
  std::vector<gx_arc16_t> arcs;
  std::vector<gx_box16_t> boxes;  // with dashes 0
};

class gx_stroke_layers_t {
 public:
  // Forgets what is kept, and covers a window of that size from now on. Strokes outside it are kept
  // as if at its edge.
  void cover(int width, int height);

  void add(int color, int dashes, const gx_line16_t& line);
  void add(int color, int dashes, const gx_arc16_t& arc);
  void add(int color, const gx_box16_t& box);

  bool empty() const { return used_ == 0; }
  // So many layers that they should be sent before more is kept.
  bool is_deep() const { return nb_of_layers_ >= max_layers; }
  void forget();

  // Calls visit(group) for every group, in the order in which they must be drawn.
  template <typename Visit>
  void visit(Visit visit) const {
    for (int layer = 0; layer < nb_of_layers_; ++layer)
      for (const int group : gx_at(in_layer_, layer)) visit(gx_at(groups_, group));
  }

 private:
  static constexpr int max_layers = 256;
  static constexpr int tile_bits = 3;  // a tile is 8 pixels wide and high
  struct tile_t {
    std::uint32_t layer = 0;  // counted on over all that was kept; below first_: nothing is there
    std::int32_t color = 0;
  };

  int column(int x) const;
  int row(int y) const;
  template <typename Visit>
  void visit_tiles(const gx_line16_t& line, Visit visit);
  template <typename Visit>
  void visit_tiles(int xmin, int ymin, int xmax, int ymax, Visit visit);
  template <typename... Place>
  gx_stroke_group_t& group_for(int color, int dashes, Place... place);
  gx_stroke_group_t& group_in_tile(int color, int dashes, std::size_t at);
  gx_stroke_group_t& group_of(int color, int dashes, const gx_line16_t& line);
  gx_stroke_group_t& group_at(std::uint32_t layer, int color, int dashes);

  int columns_ = 1, rows_ = 1;
  std::vector<tile_t> tiles_ = std::vector<tile_t>(1);
  std::uint32_t first_ = 1;  // layer number of the lowest layer
  int nb_of_layers_ = 0;
  std::vector<gx_stroke_group_t> groups_;  // the first used_ are in use
  std::size_t used_ = 0;
  // The last stroke within one tile; colour -1 when another kind came after it.
  int last_color_ = -1, last_dashes_ = 0;
  std::size_t last_tile_ = 0, last_group_ = 0;
  // The groups of a layer in the order of their first stroke, and the group of each colour and dash
  // list in it; -1 for none.
  std::vector<std::vector<int>> in_layer_;
  std::vector<std::array<int, gx_nb_of_colors * gx_nb_of_dash_lists>> index_;
};
