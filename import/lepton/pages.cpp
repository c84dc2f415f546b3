// Rows of pages.
#include "import/lepton/pages.h"

#include <algorithm>
#include <cmath>

#include "import/drawing/placement.h"
#include "import/lepton/picture.h"

namespace {

constexpr std::int32_t gap = 1000;          // between pages
constexpr std::int32_t furthest = 1900000;  // of a page on the sheet
constexpr std::int32_t letter = 10;         // about the width of one, for each point of its size

struct box_t {
  std::int32_t left = INT32_MAX, low = INT32_MAX, right = INT32_MIN, high = INT32_MIN;
  void add(gxi_lepton_point_t p) {
    left = std::min(left, p.x);
    low = std::min(low, p.y);
    right = std::max(right, p.x);
    high = std::max(high, p.y);
  }
};

void add_shape(box_t& box, const gxi_lepton_shape_t& shape) {
  for (const auto& p : shape.points) {
    box.add({p.x - shape.radius, p.y - shape.radius});
    box.add({p.x + shape.radius, p.y + shape.radius});
  }
  for (const auto& step : shape.path)
    for (const auto& p : step.points) box.add(p);
}

void add_text(box_t& box, const gxi_lepton_text_t& text) {
  const auto seen = gxi_lepton_seen(text);
  if (seen.empty()) return;
  box.add(text.at);
  const auto long_side = static_cast<std::int32_t>(std::min<std::size_t>(seen.size(), 200)) *
                         letter * std::min(text.size, 200);
  const std::int32_t sign = text.alignment >= 6 ? -1 : 1;
  box.add(text.rotate % 2 == 0 ? gxi_lepton_point_t{text.at.x + sign * long_side, text.at.y}
                               : gxi_lepton_point_t{text.at.x, text.at.y + sign * long_side});
}

box_t box_of(const gxi_lepton_page_t& page) {
  box_t box;
  for (const auto& shape : page.records->shapes) add_shape(box, shape);
  for (const auto& text : page.records->texts) add_text(box, text);
  for (const auto& net : page.records->nets) {
    box.add(net.from);
    box.add(net.to);
  }
  for (const auto& placed : page.placed) {
    box_t own;
    for (const auto& shape : placed.symbol->records->shapes) add_shape(own, shape);
    for (const auto& pin : placed.symbol->records->pins) {
      own.add(pin.tip);
      own.add(pin.root);
    }
    const auto at = placed.component->at;
    box.add(at);
    if (own.left > own.right) continue;
    gxi_instance_t turned;
    turned.rotate = static_cast<std::uint8_t>(placed.component->rotate);
    turned.mirror = placed.component->mirror;
    for (const auto& corner :
         {gxi_lepton_point_t{own.left, own.low}, gxi_lepton_point_t{own.right, own.high}}) {
      const auto seen = gxi_on_sheet(turned, gx_pointreal_t{corner.x, -corner.y});
      box.add({at.x + seen.x, at.y - seen.y});
    }
  }
  if (box.left > box.right) box.add({0, 0});
  return box;
}

}  // namespace

bool gxi_lay_out(std::vector<gxi_lepton_page_t>& pages) {
  if (pages.size() < 2) return true;
  const auto columns =
      static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(pages.size()))));
  std::int64_t wide = 0, tall = 0;
  std::vector<box_t> boxes;
  const auto up = [](std::int64_t v) { return (v + gap - 1) / gap * gap + gap; };
  for (const auto& page : pages) {
    const auto& box = boxes.emplace_back(box_of(page));
    wide = std::max(wide, up(std::int64_t{box.right} - box.left));
    tall = std::max(tall, up(std::int64_t{box.high} - box.low));
  }
  if (wide * static_cast<std::int64_t>(columns) > furthest ||
      tall * static_cast<std::int64_t>(columns) > furthest)
    return false;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    auto& shift = pages[i].shift;
    // On the grid of the drawing.
    const auto down = [](std::int32_t v) { return (v >= 0 ? v : v - 99) / 100 * 100; };
    shift.x = static_cast<std::int32_t>(wide * static_cast<std::int64_t>(i % columns)) -
              down(boxes[i].left);
    shift.y = static_cast<std::int32_t>(-tall * static_cast<std::int64_t>(i / columns)) -
              down(boxes[i].high);
    for (auto& placed : pages[i].placed) placed.shift = shift;
  }
  return true;
}
