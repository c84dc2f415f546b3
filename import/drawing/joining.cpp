#include "import/drawing/joining.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "gx/text/at.h"

void gxi_members_t::add_component(std::size_t nb_of_members) {
  first_.push_back(next_);
  next_ += static_cast<int>(nb_of_members);
}

gxi_group_numbers_t::found_t gxi_group_numbers_t::of(int root) {
  const auto [found, is_new] = numbers_.emplace(root, static_cast<int>(numbers_.size()));
  return {found->second, is_new};
}

gxi_groups_t::gxi_groups_t(std::size_t size) : parent_(size) {
  std::iota(parent_.begin(), parent_.end(), 0);
}

int gxi_groups_t::root(int i) {
  while (gx_at(parent_, i) != i) {
    auto& up = gx_at(parent_, i);
    i = up = gx_at(parent_, up);
  }
  return i;
}

void gxi_groups_t::join(int a, int b) {
  a = root(a);
  b = root(b);
  gx_at(parent_, std::max(a, b)) = std::min(a, b);
}

void gxi_join_places(gxi_groups_t& groups, std::span<const gxi_span_t> wires,
                     std::span<const gxi_met_pin_t> pins, bool slanted) {
  std::vector<gxi_span_t> spans;
  std::vector<gx_pointreal_t> points;
  std::vector<int> owners;
  for (std::size_t i = 0; i < wires.size(); ++i) {
    const auto& [from, to] = wires[i];
    const bool straight = from.x == to.x || from.y == to.y;
    spans.push_back(straight || slanted ? wires[i] : gxi_span_t{from, from});
    for (const auto& end : {from, to}) {
      points.push_back(end);
      owners.push_back(static_cast<int>(i));
    }
  }
  for (const auto& pin : pins) {
    points.push_back(pin.at);
    owners.push_back(pin.member);
  }
  std::map<std::pair<std::int32_t, std::int32_t>, int> at;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const auto [found, is_new] = at.emplace(std::pair(points[i].x, points[i].y), owners[i]);
    if (!is_new) groups.join(found->second, owners[i]);
  }
  for (const auto& run : gxi_runs(spans, points)) {
    for (const int span : run.spans) groups.join(run.spans.front(), span);
    for (const int point : run.points) groups.join(run.spans.front(), gx_at(owners, point));
  }
}
