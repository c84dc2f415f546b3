#include "import/kicad/touching.h"

#include <algorithm>
#include <map>

#include "gx/text/at.h"

namespace {

// A straight wire along a row or a column, and a point on the same.
struct stretch_t {
  int from = 0, to = 0, member = 0;
};
struct stop_t {
  int at = 0, member = 0;
};
struct line_t {
  std::vector<stretch_t> stretches{};
  std::vector<stop_t> stops{};
};
using lines_t = std::map<int, line_t>;

void add(const gxi_kicad_touch_t& touch, lines_t& rows, lines_t& columns) {
  if (const auto row = rows.find(touch.at.y); row != rows.end())
    row->second.stops.push_back({touch.at.x, touch.member});
  if (const auto column = columns.find(touch.at.x); column != columns.end())
    column->second.stops.push_back({touch.at.y, touch.member});
}

// From stop to stop: stretches that have met at one are a single one from then on.
void sweep(line_t& line, gxi_groups_t& groups) {
  std::ranges::sort(line.stretches, {}, &stretch_t::from);
  std::ranges::sort(line.stops, {}, &stop_t::at);
  std::vector<stretch_t> open;
  auto next = line.stretches.begin();
  for (const auto& [at, member] : line.stops) {
    for (; next != line.stretches.end() && next->from <= at; ++next) open.push_back(*next);
    stretch_t met{.to = at - 1, .member = member};
    for (const auto& stretch : open) {
      if (stretch.to < at) continue;
      groups.join(stretch.member, member);
      met.to = std::max(met.to, stretch.to);
    }
    open.clear();
    if (met.to >= at) open.push_back(met);
  }
}

// Wires that are neither are few; those that overlap there count as one.
void join_slanted(const std::vector<gxi_span_t>& spans, const std::vector<int>& members,
                  const std::vector<gxi_kicad_touch_t>& touches, gxi_groups_t& groups) {
  if (spans.empty()) return;
  std::vector<gx_pointreal_t> points;
  for (const auto& touch : touches) points.push_back({touch.at.x, touch.at.y});
  for (const auto& run : gxi_runs(spans, points)) {
    if (!run.points.empty()) {
      const int first = gx_at(touches, run.points.front()).member;
      for (const int point : run.points) groups.join(first, gx_at(touches, point).member);
      for (const int span : run.spans) groups.join(first, gx_at(members, span));
    }
  }
}

}  // namespace

void gxi_kicad_join_touching(gxi_groups_t& groups, const std::vector<gxi_kicad_wire_t>& wires,
                             const std::vector<gxi_kicad_touch_t>& touches) {
  lines_t rows, columns;
  std::vector<gxi_span_t> slanted;
  std::vector<int> slanted_members;
  for (std::size_t i = 0; i < wires.size(); ++i) {
    const auto& [line, from, to] = wires[i];
    const auto member = static_cast<int>(i);
    if (from.y == to.y) {
      rows[from.y].stretches.push_back({std::min(from.x, to.x), std::max(from.x, to.x), member});
    } else if (from.x == to.x) {
      columns[from.x].stretches.push_back({std::min(from.y, to.y), std::max(from.y, to.y), member});
    } else {
      slanted.push_back({{from.x, from.y}, {to.x, to.y}});
      slanted_members.push_back(member);
    }
  }
  for (const auto& touch : touches) add(touch, rows, columns);
  for (auto* const lines : {&rows, &columns})
    for (auto& [at, line] : *lines) sweep(line, groups);
  join_slanted(slanted, slanted_members, touches, groups);
}

std::vector<bool> gxi_kicad_on_wires(const std::vector<gxi_kicad_wire_t>& wires,
                                     const std::vector<gxi_kicad_point_t>& points) {
  gxi_groups_t groups(wires.size() + points.size());
  std::vector<gxi_kicad_touch_t> touches;
  for (const auto& point : points)
    touches.push_back({point, static_cast<int>(wires.size() + touches.size())});
  gxi_kicad_join_touching(groups, wires, touches);
  std::vector<bool> on;
  // The smallest member stands for its group: a wire, where there is one.
  for (const auto& touch : touches)
    on.push_back(groups.root(touch.member) < static_cast<int>(wires.size()));
  return on;
}
