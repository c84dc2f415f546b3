#include "app/values/text_room.h"

#include <algorithm>

namespace {
constexpr int cell = 4;  // pixels
}

kv_text_room_t::kv_text_room_t(const gx_bounds16_t& picture)
    : picture_(picture),
      columns_(std::max(picture.xmax - picture.xmin, 0) / cell + 1),
      rows_(std::max(picture.ymax - picture.ymin, 0) / cell + 1),
      taken_(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_)) {}

kv_text_room_t::cells_t kv_text_room_t::cells_of(const gx_bounds16_t& box) const {
  const auto column = [&](int x) {
    return std::clamp((x - picture_.xmin) / cell, 0, columns_ - 1);
  };
  const auto row = [&](int y) { return std::clamp((y - picture_.ymin) / cell, 0, rows_ - 1); };
  return {column(box.xmin), row(box.ymin), column(box.xmax), row(box.ymax)};
}

void kv_text_room_t::take(const gx_bounds16_t& box) {
  if (box.xmax < picture_.xmin || box.xmin > picture_.xmax || box.ymax < picture_.ymin ||
      box.ymin > picture_.ymax) {
    return;
  }
  const cells_t cells = cells_of(box);
  for (int y = cells.y1; y <= cells.y2; ++y) {
    for (int x = cells.x1; x <= cells.x2; ++x) {
      taken_[static_cast<std::size_t>(y * columns_ + x)] = true;
    }
  }
}

bool kv_text_room_t::take_free(const gx_bounds16_t& box) {
  if (box.xmin < picture_.xmin || box.xmax > picture_.xmax || box.ymin < picture_.ymin ||
      box.ymax > picture_.ymax) {
    return false;
  }
  const cells_t cells = cells_of(box);
  for (int y = cells.y1; y <= cells.y2; ++y) {
    for (int x = cells.x1; x <= cells.x2; ++x) {
      if (taken_[static_cast<std::size_t>(y * columns_ + x)]) return false;
    }
  }
  take(box);
  return true;
}
