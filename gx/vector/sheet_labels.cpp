// Words and places of what a picture in a file says besides the drawing.
#include "gx/vector/sheet_labels.h"

#include <cstdlib>
#include <unordered_map>

#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/db/owners.h"
#include "gx/db/place/geometry.h"
#include "gx/db/place/segment_ends.h"
#include "gx/db/queries.h"
#include "gx/text/kept_text.h"
#include "gx/text/strings.h"

std::vector<gx_placed_instance_t> gx_placed_instances(const gx_file_gene_recf_t& file) {
  std::vector<gx_placed_instance_t> placed;
  for (const int inst : lb_instances(file)) {
    if (gx_inq_object_deleted(file, inst)) continue;
    placed.push_back({inst, gx_object_abs_origin_bounds(file, inst, 0).bounds});
  }
  return placed;
}

std::vector<gx_net_place_t> gx_net_places(const gx_file_gene_recf_t& file) {
  std::unordered_map<int, int> first_pin;
  for (const int inst : lb_instances(file)) {
    if (gx_inq_object_deleted(file, inst)) continue;
    for (const auto pins : lb_pins(file, inst))
      if (!gx_inq_object_deleted(file, pins.pinpropfam))
        first_pin.try_emplace(gx_pinpropfam_info_ptr(file, pins.pinpropfam).net, pins.pinpropfam);
  }
  std::vector<gx_net_place_t> places;
  for (const int net : lb_nets(file)) {
    if (gx_is_hidden(gx_object_id_ptr(file, net))) continue;
    gx_net_place_t place{.net = net, .point = {}};
    std::int64_t longest = -1;
    for (int id = gx_inq_first_net_segment_id(file, net); id > 0;
         id = gx_inq_next_net_segment_id(file, net, id)) {
      if (gx_is_deleted(gx_object_id_ptr(file, id))) continue;
      const gx_net_segment_t segment{file, "gx_net_places", net, id};
      const gx_pointreal_t a = segment.end(1).point, b = segment.end(2).point;
      const std::int64_t dx = std::abs(std::int64_t{a.x} - b.x);
      const std::int64_t dy = std::abs(std::int64_t{a.y} - b.y);
      if (dx + dy <= longest) continue;
      longest = dx + dy;
      place.is_upright = dy > dx;
      place.point = {gx_saturated((std::int64_t{a.x} + b.x) / 2),
                     gx_saturated((std::int64_t{a.y} + b.y) / 2)};
    }
    if (longest < 0) {
      const auto pin = first_pin.find(net);
      if (pin == first_pin.end()) continue;
      place.point = gx_pin_abs_origin(file, pin->second);
    }
    places.push_back(place);
  }
  return places;
}

std::string gx_instance_words(const gx_file_gene_recf_t& file, int inst) {
  std::string words = lb_inst_name(file, inst);
  const int symbol = gx_instance_info_ptr(file, inst).symbol;
  std::string_view separator = ": ";
  const auto add = [&](std::string_view text) {
    words.append(separator).append(text);
    separator = ", ";
  };
  if (gx_object_id_ok(file, symbol)) {
    std::string_view path = gx_view(gx_symbol_info_ptr(file, symbol).path);
    path = path.substr(0, path.rfind('/'));
    if (!path.empty()) add(path);
  }
  const auto add_properties = [&](gx_owner_kind kind, int id, auto is_wanted) {
    gx_visit_properties(file, {kind, id, inst, inst}, [&](const auto& property) {
      if (is_wanted(gx_view(property.name)))
        add(std::string(gx_view(property.name)) + "=" + gx_shown_text(gx_view(property.nvalue)));
    });
  };
  const int own = lb_inq_inst_child_id(file, inst).bodpropfam;
  const auto is_no_name = [](std::string_view name) { return !gx_iden(name, "INST"); };
  add_properties(gx_owner_kind::body, inst, is_no_name);
  add_properties(gx_owner_kind::symbol, symbol, [&](std::string_view name) {
    return is_no_name(name) && (own <= 0 || gx_find_property_name(file, own, name) <= 0);
  });
  return words;
}
