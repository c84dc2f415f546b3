// Sheets: copies of the symbols used, instances, nets with their vertices, frames.
#include <algorithm>
#include <map>

#include "gx/db/object_access.h"
#include "gx/db/place/geometry.h"
#include "gx/edit/primitives.h"
#include "gx/text/at.h"
#include "gx/text/kept_text.h"
#include "gx/text/strings.h"
#include "gxmake/symbol_parts.h"
#include "gxmake/wire_net.h"

namespace {

// Names of nets and ports of a bus carry the range.
std::string with_range(const std::string& name, const std::optional<gxm_range_t>& range) {
  if (!range) return name;
  return name + "[" + std::to_string(range->start) + ":" + std::to_string(range->end) + "]";
}

// The stored property (in symbol coordinates) whose text is read unturned at the place that
// `property` gives relative to the instance's origin on the sheet; `turn` becomes its rotation.
gxm_property_t unturned(gxm_property_t property, const gxm_part_t& part, int& turn) {
  turn = 0;
  if (!property.at) return property;
  turn = part.rotate % 2 == 0 ? 0 : 4 - part.rotate;
  // A text that is turned over is drawn from the other end of its box (gx/db/place/geometry.h).
  const std::int32_t length = static_cast<std::int32_t>(gx_shown_length(property.value));
  const std::int32_t width = length * property.height + length * property.height / 5;
  gx_pointreal_t corner = *property.at;
  if (part.rotate == 2) corner.x += width;
  if ((part.rotate == 2) != part.mirror) corner.y -= property.height / 2;
  corner = gx_turn(corner, 0, part.mirror);
  property.at = gx_turn(corner, (4 - part.rotate) % 4, false);
  return property;
}

class sheet_builder {
 public:
  sheet_builder(const gxm_sheet_t& sheet, const gxm_design_t& design, const gxm_options_t& options,
                gxm_messages_t& messages)
      : sheet_(sheet),
        options_(options),
        messages_(messages),
        tree_(gxm_start_tree(options.date, sheet.page, sheet.grid_step, sheet.grid_on)) {
    for (const auto& symbol : design.symbols) symbols_.emplace(symbol.name, &symbol);
    auto& file = *tree_.file;
    file.check_data_done = sheet.check_data_done;
    file.num_errors = sheet.num_errors;
    const auto family = [&](gx_type type) {
      return gxm_add_plain(tree_, type, file.primary_object);
    };
    instances_ = family(gx_type::instance_family);
    symbol_family_ = family(gx_type::symbol_family);
    nets_ = family(gx_type::net_family);
    vertices_ = family(gx_type::vertex_family);
    frames_ = family(gx_type::frame_family);
  }

  std::shared_ptr<gx_file_gene_recf_t> run() {
    for (const auto& part : sheet_.parts) use_symbol(part);
    for (const auto& part : sheet_.parts) add_part(part);
    for (const auto& net : sheet_.nets) add_net(net);
    for (const auto& frame : sheet_.frames) add_frame(frame);
    gxm_chain_instances(tree_);
    gxm_grow_boxes(tree_);
    return tree_.file;
  }

 private:
  struct used_symbol_t {
    const gxm_symbol_t* symbol = nullptr;
    gx_object_id_t id = 0;
  };

  void use_symbol(const gxm_part_t& part) {
    if (used_.contains(part.symbol)) return;
    const auto found = symbols_.find(part.symbol);
    if (found == symbols_.end()) {
      gxm_complain(messages_, part.source,
                   "part " + part.name + ": there is no symbol " + part.symbol);
      used_[part.symbol] = {};
      return;
    }
    std::string path = options_.prefix + part.symbol + "/symbol.gx_1";
    if (path.size() > 199) {
      gxm_complain(messages_, part.source, "the path of the symbol is too long: " + path);
      path = "symbol.gx_1";  // for what else may be wrong
    }
    const auto id =
        gxm_make(tree_, gx_type::symbol, symbol_family_, {}, [&path] { gx_symbol(path); });
    gxm_add_symbol_contents(tree_, *found->second, id);
    used_[part.symbol] = {found->second, id};
  }

  void add_part(const gxm_part_t& part) {
    auto& used = used_[part.symbol];
    if (!used.symbol) return;
    for (const auto& property : part.properties)
      for (const auto& fixed : used.symbol->properties)
        if (gx_iden(property.name, fixed.name))
          gxm_complain(messages_, part.source,
                       "part " + part.name + ": " + property.name + " is fixed by the symbol " +
                           part.symbol + " (make it a default there)");
    const auto id = gxm_make(tree_, gx_type::instance, instances_, part.at,
                             [&] { gx_instance(used.id, part.rotate, part.mirror); });
    const auto body = gxm_add_plain(tree_, gx_type::bodpropfam, id);
    for (const auto& property : body_properties(part, *used.symbol)) {
      int turn = 0;
      const auto stored = unturned(property, part, turn);
      gxm_add_property(tree_, stored, body, false, turn);
    }
    add_pins(part, *used.symbol, id);
  }

  // The name, those that the part gives, and the defaults of the symbol for the rest.
  static std::vector<gxm_property_t> body_properties(const gxm_part_t& part,
                                                     const gxm_symbol_t& symbol) {
    std::vector<gxm_property_t> properties;
    const auto named = [](auto& list, std::string_view name) {
      return std::find_if(list.begin(), list.end(),
                          [&](const auto& entry) { return gx_iden(entry.name, name); });
    };
    const std::string_view name_property = part.kind == gxm_kind::part     ? "INST"
                                           : part.kind == gxm_kind::global ? "GLOBAL"
                                                                           : "";
    const auto of_symbol = named(symbol.properties, "GLOBAL");
    const bool symbol_names_global = part.kind == gxm_kind::global &&
                                     of_symbol != symbol.properties.end() &&
                                     of_symbol->value == part.name;
    if (!name_property.empty() && !part.name.empty() && !symbol_names_global)
      properties.push_back(
          {.name = std::string(name_property), .value = part.name, .at = part.name_at});
    properties.insert(properties.end(), part.properties.begin(), part.properties.end());
    for (const auto& value : symbol.defaults)
      if (named(properties, value.name) == properties.end()) properties.push_back(value);
    for (const auto& show : symbol.shows) {
      const auto own = named(properties, show.name);
      if (own == properties.end() || own->at) continue;
      own->at = show.at;
      own->height = show.height;
      own->color = show.color;
    }
    return properties;
  }

  void add_pins(const gxm_part_t& part, const gxm_symbol_t& symbol, gx_object_id_t instance) {
    const auto family = gxm_add_plain(tree_, gx_type::pin_family, instance);
    bool first = true;
    for (const auto& pin : symbol.pins) {
      const auto range = first && part.range ? part.range : pin.range;
      auto& object = gxm_add<gx_object_pinpropfam_rec_t>(tree_, family, pin.at);
      if (range) {
        object.pin_start = range->start;
        object.pin_end = range->end;
      }
      if (first && part.kind == gxm_kind::port) {
        gxm_property_t name{.name = "NET", .value = with_range(part.name, part.range), .at = {}};
        const auto show = std::find_if(
            symbol.shows.begin(), symbol.shows.end(),
            [](const gxm_show_t& candidate) { return gx_iden(candidate.name, "NET"); });
        if (part.name_at)
          name.at = *part.name_at;
        else if (show != symbol.shows.end())
          name.at = show->at;
        add_pin_property(name, part, pin, object.gene.object_id);
      }
      if (first)
        for (const auto& property : part.pin_properties)
          add_pin_property(property, part, pin, object.gene.object_id);
      const auto offset = gx_turn(pin.at, part.rotate, part.mirror);
      places_.add_pin({part.name,
                       pin.name,
                       {part.at.x + offset.x, part.at.y + offset.y},
                       object.gene.object_id,
                       range});
      first = false;
    }
  }

  // The place of the text is given relative to the instance; it is stored relative to the pin.
  void add_pin_property(const gxm_property_t& property, const gxm_part_t& part,
                        const gxm_pin_t& pin, gx_object_id_t father) {
    int turn = 0;
    auto stored = unturned(property, part, turn);
    if (stored.at) stored.at = {stored.at->x - pin.at.x, stored.at->y - pin.at.y};
    gxm_add_property(tree_, stored, father, false, turn);
  }

  void add_net(const gxm_net_t& net) {
    auto& object = gxm_add<gx_object_net_rec_t>(tree_, nets_, {});
    const auto id = object.gene.object_id;
    if (net.range) {
      object.is_bus = 1;
      object.bus_start = net.range->start;
      object.bus_end = net.range->end;
    }
    const auto told = messages_.size();
    const auto wiring = gxm_wire_net(net, places_, messages_);
    if (wiring.segments.empty() && messages_.size() == told)
      gxm_complain(messages_, net.source, "net " + net.name + " has no wire");

    const auto family = gxm_add_plain(tree_, gx_type::property_family, id);
    const auto start = wiring.ends.empty() ? gx_pointreal_t{} : wiring.ends[0].place;
    for (const auto& property : net.properties)
      gxm_add_property(tree_, property, family, false, property.vertical ? 1 : 0, start);
    std::vector<gx_object_id_t> ids;
    for (const auto& end : wiring.ends) ids.push_back(add_end(end, net, id));
    for (const auto& piece : wiring.segments) {
      gxm_make(tree_, gx_type::segment, id, {}, [&] {
        gx_segment(piece.wire->style, piece.wire->color, piece.wire->width, ids[piece.end1],
                   ids[piece.end2]);
      });
    }
    for (const auto& bit : net.bits) set_bit(bit, net);
  }

  gx_object_id_t add_end(const gxm_end_t& end, const gxm_net_t& net, gx_object_id_t net_id) {
    if (end.other_vertex) return end.other_vertex;
    if (end.pin >= 0) {
      const auto id = gx_at(places_.pins, end.pin).pinpropfam;
      auto& pin = pin_object(id);
      if (pin.net == 0) pin.net = net_id;
      if (end.degree > 1) pin.dotted = 1;
      if (net.range) pin.pin_net_start = net.range->start;
      return id;
    }
    const auto id = gxm_make(tree_, gx_type::vertex_2d, vertices_, {},
                             [&] { gx_vertex_2dreal(end.place.x, end.place.y); });
    auto& vertex = gx_vertex_info_ptr(*tree_.file, id);
    vertex.net = net_id;
    vertex.dotted = end.degree > 2;
    places_.vertices[{net.name, {end.place.x, end.place.y}}] = id;
    return id;
  }

  void set_bit(const gxm_bit_t& bit, const gxm_net_t& net) {
    const int pin = places_.find(bit.part, bit.pin);
    const std::string name = bit.part + "." + bit.pin;
    if (pin < 0) {
      gxm_complain(messages_, bit.source, "there is no pin " + name);
      return;
    }
    const auto& place = gx_at(places_.pins, pin);
    const int more = place.range ? place.range->end - place.range->start : 0;
    if (!net.range || bit.bit < net.range->start || bit.bit + more > net.range->end)
      gxm_complain(messages_, bit.source,
                   "pin " + name + " does not fit into " + with_range(net.name, net.range));
    else
      pin_object(place.pinpropfam).pin_net_start = bit.bit;
  }

  gx_object_pinpropfam_rec_t& pin_object(gx_object_id_t id) {
    return gx_pinpropfam_info_ptr(*tree_.file, id);
  }

  void add_frame(const gxm_frame_t& frame) {
    const auto id = gxm_add_plain(tree_, gx_type::frame, frames_);
    const auto graphics = gxm_add_plain(tree_, gx_type::graphics, id);
    for (const auto& shape : frame.shapes) gxm_add_shape(tree_, shape, graphics);
    const auto family = gxm_add_plain(tree_, gx_type::property_family, id);
    if (!frame.expression.empty())
      gxm_add_property(tree_, {.name = "FREXP", .value = frame.expression, .at = {}}, family, false,
                       0);
    for (const auto& property : frame.properties)
      gxm_add_property(tree_, property, family, false, property.vertical ? 1 : 0);
  }

  const gxm_sheet_t& sheet_;
  const gxm_options_t& options_;
  gxm_messages_t& messages_;
  gxm_tree_t tree_;
  std::map<std::string_view, const gxm_symbol_t*> symbols_;
  std::map<std::string, used_symbol_t> used_;
  gxm_places_t places_;
  gx_object_id_t instances_ = 0, symbol_family_ = 0, nets_ = 0, vertices_ = 0, frames_ = 0;
};

}  // namespace

std::shared_ptr<gx_file_gene_recf_t> gxm_build_sheet(const gxm_sheet_t& sheet,
                                                     const gxm_design_t& design,
                                                     const gxm_options_t& options,
                                                     gxm_messages_t& messages) try {
  return sheet_builder(sheet, design, options, messages).run();
} catch (const gxm_too_many_objects& error) {
  gxm_complain(messages, sheet.source, "sheet " + sheet.name + ": " + error.what());
  return nullptr;
}
