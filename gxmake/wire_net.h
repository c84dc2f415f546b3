// The wires of one net: from stops in words to ends and segments.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "gx/db/ids.h"
#include "gxmake/description.h"

// A pin of an instance of the sheet.
struct gxm_pin_place_t {
  std::string part, pin;
  gx_pointreal_t place;  // on the sheet
  gx_object_id_t pinpropfam = 0;
  std::optional<gxm_range_t> range;
};

// Where segments end: a pin (position in the list of pins), a vertex of another net, or a vertex
// to be made.
struct gxm_end_t {
  gx_pointreal_t place;
  int pin = -1;
  gx_object_id_t other_vertex = 0;
  int degree = 0;  // segments that end here
};

struct gxm_segment_t {
  std::size_t end1 = 0, end2 = 0;
  const gxm_wire_t* wire = nullptr;
};

struct gxm_wiring_t {
  std::vector<gxm_end_t> ends;
  std::vector<gxm_segment_t> segments;
};

// The pins of a sheet, found by name and by place; and the vertices of its nets so far.
struct gxm_places_t {
  std::vector<gxm_pin_place_t> pins;
  std::map<std::pair<std::string, std::string>, int> by_name;
  std::multimap<std::pair<std::int32_t, std::int32_t>, int> by_place;
  std::map<std::pair<std::string, std::pair<std::int32_t, std::int32_t>>, gx_object_id_t> vertices;

  void add_pin(gxm_pin_place_t pin);
  int find(std::string_view part, std::string_view pin) const;  // -1: none
};

// Segments never run over an end of their net: they are cut there. A wire that runs over a pin
// which the net does not join, and a stop that cannot be found, are reported in `messages`.
gxm_wiring_t gxm_wire_net(const gxm_net_t& net, const gxm_places_t& places,
                          gxm_messages_t& messages);
