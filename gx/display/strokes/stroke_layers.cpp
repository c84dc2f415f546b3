#include "gx/display/strokes/stroke_layers.h"

#include <algorithm>

#include "gx/text/at.h"

int gx_stroke_layers_t::column(int x) const { return std::clamp(x >> tile_bits, 0, columns_ - 1); }

int gx_stroke_layers_t::row(int y) const { return std::clamp(y >> tile_bits, 0, rows_ - 1); }

template <typename Visit>
void gx_stroke_layers_t::visit_tiles(int xmin, int ymin, int xmax, int ymax, Visit visit) {
  const int left = column(xmin), right = column(xmax);
  for (int r = row(ymin), bottom = row(ymax); r <= bottom; ++r)
    for (int c = left; c <= right; ++c) visit(gx_at(tiles_, r * columns_ + c));
}

template <typename Visit>
void gx_stroke_layers_t::visit_tiles(const gx_line16_t& line, Visit visit) {
  const int x1 = std::min(line.x1, line.x2), x2 = std::max(line.x1, line.x2);
  const int y1 = std::min(line.y1, line.y2), y2 = std::max(line.y1, line.y2);
  const int left = column(x1), right = column(x2);
  if (left == right || row(y1) == row(y2)) {
    visit_tiles(x1, y1, x2, y2, visit);
    return;
  }
  // A slanted line: in each column of tiles the rows between where it enters and leaves.
  const std::int64_t dx = line.x2 - line.x1, dy = line.y2 - line.y1;
  const auto y_at = [&](int x) {
    return static_cast<int>(line.y1 + (std::clamp(x, x1, x2) - line.x1) * dy / dx);
  };
  for (int c = left; c <= right; ++c) {
    const int from = c == left ? x1 : c << tile_bits;
    const int to = c == right ? x2 : ((c + 1) << tile_bits) - 1;
    const auto [low, high] = std::minmax({y_at(from), y_at(to)});
    visit_tiles(c << tile_bits, low - 1, c << tile_bits, high + 1, visit);
  }
}

// The group for a stroke; the tiles at its place learn of it.
template <typename... Place>
gx_stroke_group_t& gx_stroke_layers_t::group_for(int color, int dashes, Place... place) {
  std::uint32_t layer = first_;
  visit_tiles(place..., [&](const tile_t& tile) {
    if (tile.layer >= first_)
      layer = std::max(layer, tile.color == color ? tile.layer : tile.layer + 1);
  });
  visit_tiles(place..., [&](tile_t& tile) { tile = {layer, color}; });
  last_color_ = -1;
  return group_at(layer, color, dashes);
}

gx_stroke_group_t& gx_stroke_layers_t::group_at(std::uint32_t layer, int color, int dashes) {
  const auto at = static_cast<std::size_t>(layer - first_);
  if (static_cast<int>(at) >= nb_of_layers_) {
    nb_of_layers_ = static_cast<int>(at) + 1;
    if (in_layer_.size() <= at) {
      in_layer_.resize(at + 1);
      index_.resize(at + 1);
    }
    in_layer_[at].clear();
    index_[at].fill(-1);
  }
  int& group = gx_at(index_[at], color * gx_nb_of_dash_lists + dashes);
  if (group < 0) {
    group = static_cast<int>(used_);
    in_layer_[at].push_back(group);
    if (groups_.size() == used_) groups_.emplace_back();
    groups_[used_].color = color;
    groups_[used_].dashes = dashes;
    ++used_;
  }
  return gx_at(groups_, group);
}

void gx_stroke_layers_t::cover(int width, int height) {
  const int columns = std::max((width >> tile_bits) + 1, 1);
  const int rows = std::max((height >> tile_bits) + 1, 1);
  if (columns == columns_ && rows == rows_) return;
  forget();
  columns_ = columns;
  rows_ = rows;
  tiles_.assign(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), {});
}

// A short stroke within one tile, such as most of a text, goes where the last one went when that
// one was of its kind and is the tile's topmost.
gx_stroke_group_t& gx_stroke_layers_t::group_in_tile(int color, int dashes, std::size_t at) {
  if (at == last_tile_ && color == last_color_ && dashes == last_dashes_ && used_ > 0)
    return groups_[last_group_];
  tile_t& tile = tiles_[at];
  std::uint32_t layer = first_;
  if (tile.layer >= first_) layer = tile.color == color ? tile.layer : tile.layer + 1;
  tile = {layer, color};
  auto& group = group_at(layer, color, dashes);
  last_tile_ = at;
  last_color_ = color;
  last_dashes_ = dashes;
  last_group_ = static_cast<std::size_t>(&group - groups_.data());
  return group;
}

gx_stroke_group_t& gx_stroke_layers_t::group_of(int color, int dashes, const gx_line16_t& line) {
  const int left = column(line.x1), top = row(line.y1);
  if (left == column(line.x2) && top == row(line.y2))
    return group_in_tile(color, dashes, static_cast<std::size_t>(top * columns_ + left));
  return group_for(color, dashes, line);
}

void gx_stroke_layers_t::add(int color, int dashes, const gx_line16_t& line) {
  auto& lines = group_of(color, dashes, line).lines;
  // Tiny text gives many times the same point.
  if (!lines.empty() && line.x1 == line.x2 && line.y1 == line.y2 && lines.back().x2 == line.x2 &&
      lines.back().y2 == line.y2)
    return;
  lines.push_back(line);
}

void gx_stroke_layers_t::add(int color, int dashes, const gx_arc16_t& arc) {
  group_for(color, dashes, arc.x, arc.y, arc.x + arc.size, arc.y + arc.size).arcs.push_back(arc);
}

void gx_stroke_layers_t::add(int color, const gx_box16_t& box) {
  group_for(color, 0, int{box.x}, int{box.y}, box.x + box.width - 1, box.y + box.height - 1)
      .boxes.push_back(box);
}

void gx_stroke_layers_t::forget() {
  for (std::size_t i = 0; i < used_; ++i) {
    groups_[i].lines.clear();
    groups_[i].arcs.clear();
    groups_[i].boxes.clear();
  }
  used_ = 0;
  last_color_ = -1;
  first_ += static_cast<std::uint32_t>(nb_of_layers_);
  nb_of_layers_ = 0;
  if (first_ > UINT32_MAX / 2) {
    first_ = 1;
    std::fill(tiles_.begin(), tiles_.end(), tile_t{});
  }
}
