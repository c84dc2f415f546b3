// Cutting the wires of a net at its pins and at each other.
#include "import/build/wiring.h"

#include <algorithm>
#include <map>
#include <utility>

#include "gx/text/at.h"
#include "import/drawing/runs.h"

namespace {

// Places on one line are in the order along it.
using place_t = std::pair<std::int32_t, std::int32_t>;

place_t place_of(gx_pointreal_t p) { return {p.x, p.y}; }

std::pair<place_t, place_t> ends_of(const gxi_segment_t& segment) {
  return std::minmax({place_of(segment.from), place_of(segment.to)});
}

}  // namespace

gxi_wiring_t gxi_wire(std::span<const gxi_segment_t> segments,
                      std::span<const gx_pointreal_t> pins) {
  gxi_wiring_t wiring;
  if (segments.empty()) return wiring;
  // Every place where something ends once: the pins first, so that they win over vertices.
  std::map<place_t, int> known;
  std::vector<gx_pointreal_t> places;
  std::vector<int> pin_at;
  const auto add = [&](gx_pointreal_t p, int pin) {
    if (!known.emplace(place_of(p), static_cast<int>(places.size())).second) return;
    places.push_back(p);
    pin_at.push_back(pin);
  };
  for (std::size_t i = 0; i < pins.size(); ++i) add(pins[i], static_cast<int>(i));
  std::vector<gxi_span_t> spans;
  for (const auto& segment : segments) {
    spans.push_back({segment.from, segment.to});
    if (segment.from == segment.to) continue;
    add(segment.from, -1);
    add(segment.to, -1);
  }

  std::vector<int> end_at(places.size(), -1);
  const auto end_of = [&](int place) {
    auto& end = gx_at(end_at, place);
    if (end < 0) {
      end = static_cast<int>(wiring.ends.size());
      wiring.ends.push_back({gx_at(places, place), gx_at(pin_at, place), 0});
    }
    ++gx_at(wiring.ends, end).degree;
    return static_cast<std::size_t>(end);
  };
  for (const auto& run : gxi_runs(spans, places)) {
    // A piece looks like the segment of the one before it; where that ends, like the one that goes
    // on.
    const gxi_segment_t *seen = nullptr, *farthest = nullptr;
    auto next = run.spans.begin();
    for (std::size_t i = 0; i + 1 < run.points.size(); ++i) {
      const place_t from = place_of(gx_at(places, run.points[i]));
      for (; next != run.spans.end() && ends_of(gx_at(segments, *next)).first <= from; ++next) {
        const auto& begun = gx_at(segments, *next);
        if (farthest == nullptr || ends_of(begun).second > ends_of(*farthest).second)
          farthest = &begun;
      }
      if (seen == nullptr || ends_of(*seen).second <= from) seen = farthest;
      const auto end1 = end_of(run.points[i]);
      wiring.pieces.push_back({end1, end_of(run.points[i + 1]), seen->color, seen->width});
    }
  }
  return wiring;
}
