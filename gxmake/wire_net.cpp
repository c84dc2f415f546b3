// Resolving the stops of wires, and cutting wires where they meet.
#include "gxmake/wire_net.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "gx/text/at.h"

namespace {

using place_t = std::pair<std::int32_t, std::int32_t>;

place_t key(gx_pointreal_t p) { return {p.x, p.y}; }

// p lies on the line from a to b, ends excluded.
bool inside(gx_pointreal_t p, gx_pointreal_t a, gx_pointreal_t b) {
  const std::int64_t dx = std::int64_t{b.x} - a.x, dy = std::int64_t{b.y} - a.y;
  const std::int64_t px = std::int64_t{p.x} - a.x, py = std::int64_t{p.y} - a.y;
  if (dx * py != dy * px) return false;
  const std::int64_t along = dx * px + dy * py;
  return along > 0 && along < dx * dx + dy * dy;
}

class net_wirer {
 public:
  net_wirer(const gxm_net_t& net, const gxm_places_t& places, gxm_messages_t& messages)
      : net_(net), places_(places), messages_(messages) {}

  gxm_wiring_t run() {
    for (const auto& wire : net_.wires) follow(wire);
    cut();
    refuse_pins_run_over();
    for (const auto& segment : wiring_.segments) {
      ++wiring_.ends[segment.end1].degree;
      ++wiring_.ends[segment.end2].degree;
    }
    return std::move(wiring_);
  }

 private:
  void complain(const gxm_source_t& source, const std::string& what) {
    gxm_complain(messages_, source,
                 "net " + (net_.name.empty() ? "without name" : net_.name) + ": " + what);
  }

  std::size_t end_of_pin(int pin) {
    const auto [found, is_new] = pin_ends_.emplace(pin, wiring_.ends.size());
    if (is_new) wiring_.ends.push_back({.place = gx_at(places_.pins, pin).place, .pin = pin});
    return found->second;
  }

  // The end at a place: the one pin there, or a vertex.
  std::optional<std::size_t> end_at(gx_pointreal_t place, const gxm_source_t& source) {
    const auto [first, last] = places_.by_place.equal_range(key(place));
    if (first != last && std::next(first) == last) return end_of_pin(first->second);
    if (first != last) {
      // Two parts may meet pin on pin; which one is meant is known when the net named it already.
      for (auto pin = first; pin != last; ++pin)
        if (pin_ends_.contains(pin->second)) return pin_ends_[pin->second];
      const auto& pin = gx_at(places_.pins, first->second);
      complain(source, "several pins meet at " + pin.part + "." + pin.pin + ": name one");
      return std::nullopt;
    }
    const auto [found, is_new] = place_ends_.emplace(key(place), wiring_.ends.size());
    if (is_new) wiring_.ends.push_back({.place = place});
    return found->second;
  }

  std::optional<std::size_t> end_of_stop(const gxm_stop_t& stop, const gxm_source_t& source,
                                         std::optional<gx_pointreal_t> before) {
    if (!stop.part.empty()) {
      const int pin = places_.find(stop.part, stop.pin);
      if (pin < 0) {
        complain(source, "there is no pin " + stop.part + "." + stop.pin);
        return std::nullopt;
      }
      return end_of_pin(pin);
    }
    if ((!stop.x || !stop.y) && !before) {
      complain(source, "\".\" needs a stop before it");
      return std::nullopt;
    }
    const gx_pointreal_t place{stop.x ? *stop.x : before->x, stop.y ? *stop.y : before->y};
    if (stop.net.empty()) return end_at(place, source);
    const auto vertex = places_.vertices.find({stop.net, key(place)});
    if (vertex == places_.vertices.end()) {
      complain(source, "net " + stop.net + " has no vertex there (is it described before?)");
      return std::nullopt;
    }
    const auto [found, is_new] = vertex_ends_.emplace(vertex->second, wiring_.ends.size());
    if (is_new) wiring_.ends.push_back({.place = place, .other_vertex = vertex->second});
    return found->second;
  }

  void follow(const gxm_wire_t& wire) {
    std::optional<std::size_t> last;
    for (const auto& stop : wire.stops) {
      std::optional<gx_pointreal_t> before;
      if (last) before = wiring_.ends[*last].place;
      const auto next = end_of_stop(stop, wire.source, before);
      if (!next) return;
      if (last) {
        const auto to = wiring_.ends[*next].place;
        using corner = gxm_stop_t::corner_t;
        if (stop.corner != corner::straight && before->x != to.x && before->y != to.y) {
          const gx_pointreal_t turn = stop.corner == corner::across_first
                                          ? gx_pointreal_t{to.x, before->y}
                                          : gx_pointreal_t{before->x, to.y};
          const auto middle = end_at(turn, wire.source);
          if (!middle) return;
          join(*last, *middle, wire);
          last = middle;
        }
        join(*last, *next, wire);
      }
      last = next;
    }
  }

  void join(std::size_t a, std::size_t b, const gxm_wire_t& wire) {
    if (a != b) wiring_.segments.push_back({a, b, &wire});
  }

  // Cuts every segment at the ends that lie on it, and drops doubles.
  void cut() {
    std::vector<gxm_segment_t> pieces;
    std::set<std::pair<std::size_t, std::size_t>> known;
    const auto& ends = wiring_.ends;
    for (const auto& whole : wiring_.segments) {
      const auto a = ends[whole.end1].place, b = ends[whole.end2].place;
      std::vector<std::size_t> stops{whole.end1};
      for (std::size_t i = 0; i < ends.size(); ++i)
        if (inside(ends[i].place, a, b)) stops.push_back(i);
      stops.push_back(whole.end2);
      const auto distance = [&](std::size_t end) {
        return std::abs(std::int64_t{ends[end].place.x} - a.x) +
               std::abs(std::int64_t{ends[end].place.y} - a.y);
      };
      std::stable_sort(stops.begin() + 1, stops.end() - 1,
                       [&](std::size_t x, std::size_t y) { return distance(x) < distance(y); });
      for (std::size_t i = 0; i + 1 < stops.size(); ++i)
        if (known.insert(std::minmax(stops[i], stops[i + 1])).second)
          pieces.push_back({stops[i], stops[i + 1], whole.wire});
    }
    wiring_.segments = std::move(pieces);
  }

  void refuse_pins_run_over() {
    for (const auto& segment : wiring_.segments) {
      const auto a = wiring_.ends[segment.end1].place, b = wiring_.ends[segment.end2].place;
      for (const auto& pin : places_.pins)
        if (inside(pin.place, a, b))
          complain(segment.wire->source,
                   "the wire runs over pin " + pin.part + "." + pin.pin + " without a stop");
    }
  }

  const gxm_net_t& net_;
  const gxm_places_t& places_;
  gxm_messages_t& messages_;
  gxm_wiring_t wiring_;
  std::map<int, std::size_t> pin_ends_;
  std::map<place_t, std::size_t> place_ends_;
  std::map<gx_object_id_t, std::size_t> vertex_ends_;
};

}  // namespace

void gxm_places_t::add_pin(gxm_pin_place_t pin) {
  const int index = static_cast<int>(pins.size());
  by_name.emplace(std::pair(pin.part, pin.pin), index);
  by_name.emplace(std::pair(pin.part, std::string()), index);  // the part's first pin
  by_place.emplace(key(pin.place), index);
  pins.push_back(std::move(pin));
}

int gxm_places_t::find(std::string_view part, std::string_view pin) const {
  const auto found = by_name.find({std::string(part), std::string(pin)});
  return found == by_name.end() ? -1 : found->second;
}

gxm_wiring_t gxm_wire_net(const gxm_net_t& net, const gxm_places_t& places,
                          gxm_messages_t& messages) {
  return net_wirer(net, places, messages).run();
}
