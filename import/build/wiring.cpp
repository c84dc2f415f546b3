// Cutting the wires of a net at its pins and at each other.
#include "import/build/wiring.h"

#include <map>
#include <utility>

#include "gx/text/at.h"
#include "import/drawing/runs.h"

gxi_wiring_t gxi_wire(std::span<const gxi_segment_t> segments,
                      std::span<const gx_pointreal_t> pins) {
  gxi_wiring_t wiring;
  if (segments.empty()) return wiring;
  // Every place where something ends once: the pins first, so that they win over vertices.
  std::map<std::pair<std::int32_t, std::int32_t>, int> known;
  std::vector<gx_pointreal_t> places;
  std::vector<int> pin_at;
  const auto add = [&](gx_pointreal_t p, int pin) {
    if (!known.emplace(std::pair(p.x, p.y), static_cast<int>(places.size())).second) return;
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
    const auto& look = gx_at(segments, run.spans.front());
    for (std::size_t i = 0; i + 1 < run.points.size(); ++i) {
      const auto end1 = end_of(run.points[i]);
      wiring.pieces.push_back({end1, end_of(run.points[i + 1]), look.color, look.width});
    }
  }
  return wiring;
}
