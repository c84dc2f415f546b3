// Symbols, instances, nets and frames of one cell, object by object.
#include "import/build/builder.h"

#include <algorithm>
#include <map>

#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "gxmake/symbol_parts.h"
#include "import/build/plain_symbol.h"
#include "import/build/sheet_extent.h"
#include "import/build/wiring.h"
#include "import/drawing/placement.h"

namespace {

constexpr std::size_t texts_of_frame = 900;  // a check of the sheet takes 999
constexpr std::int32_t margin = 4 * gxm_step;
// Somewhat larger than the dots of the drawings: less is not seen in a view of the whole sheet.
constexpr std::int32_t half_a_dot = gxm_step / 2;

class sheet_builder {
 public:
  sheet_builder(const gxi_design_t& design, const gxi_sheet_t& sheet,
                const std::function<gxi_symbol_path_t(int)>& symbol_path)
      : design_(design), sheet_(sheet), symbol_path_(symbol_path), tree_(start()) {
    const auto family = [&](gx_type type) {
      return gxm_add_plain(tree_, type, tree_.file->primary_object);
    };
    instances_ = family(gx_type::instance_family);
    symbols_ = family(gx_type::symbol_family);
    nets_ = family(gx_type::net_family);
    vertices_ = family(gx_type::vertex_family);
    frames_ = family(gx_type::frame_family);
  }

  gxi_tree_t run() {
    tree_.file->dot_width = half_a_dot;
    pins_of_net_.resize(sheet_.nets.size());
    for (const auto& instance : sheet_.instances) use_symbol(instance.symbol);
    for (const auto& instance : sheet_.instances) add_instance(instance);
    for (std::size_t i = 0; i < sheet_.nets.size(); ++i) add_net(i);
    add_frames();
    gxm_grow_boxes(tree_);
    return tree_.file;
  }

 private:
  struct used_symbol_t {
    gx_object_symbol_rec_t* object = nullptr;
    gx_object_instance_rec_t* last_instance = nullptr;
    std::int16_t version = 1;
  };
  struct net_pin_t {
    gx_pointreal_t at{};
    gx_object_pinpropfam_rec_t* pin = nullptr;
  };

  gxi_look_t moved(gxi_look_t look) const {
    look.at = moved(look.at);
    return look;
  }
  gx_pointreal_t moved(gx_pointreal_t p) const { return {p.x + shift_.x, p.y + shift_.y}; }

  // A page that holds everything drawn, with a margin; what is drawn keeps its place on the grid.
  gxm_tree_t start() {
    const auto box = gxi_extent(design_, sheet_);
    const auto floor_to_grid = [](std::int64_t v) {
      return static_cast<std::int32_t>((v >= 0 ? v : v - gxm_step + 1) / gxm_step * gxm_step);
    };
    shift_ = {floor_to_grid(-std::int64_t{box.xmin} + margin + gxm_step - 1),
              floor_to_grid(-std::int64_t{box.ymin} + margin + gxm_step - 1)};
    const auto page_to = [&](std::int64_t end) {
      return std::max(floor_to_grid(end + margin + gxm_step), 20 * gxm_step);
    };
    const gx_pointreal_t page{page_to(std::int64_t{box.xmax} + shift_.x),
                              page_to(std::int64_t{box.ymax} + shift_.y)};
    return gxm_start_tree({}, page, gxm_step, true);
  }

  void use_symbol(int cell) {
    const auto [used, is_new] = used_.try_emplace(cell);
    if (!is_new) return;
    auto& object = gxm_add<gx_object_symbol_rec_t>(tree_, symbols_, {});
    const auto named = symbol_path_(cell);
    object.path = gx_string(named.path);
    used->second.object = &object;
    used->second.version = named.version;
    gxm_add_symbol_contents(tree_, gxi_plain_symbol(gx_at(design_.cells, cell).symbol),
                            object.gene.object_id);
  }

  void add_instance(const gxi_instance_t& instance) {
    auto& used = used_[instance.symbol];
    const auto& symbol = gx_at(design_.cells, instance.symbol).symbol;
    auto& object = gxm_add<gx_object_instance_rec_t>(tree_, instances_, moved(instance.at));
    const auto id = object.gene.object_id;
    const auto turn = gxi_turn_of(instance);
    object.rotate = turn.rotate;
    object.fliph = turn.fliph;
    object.symbol = used.object->gene.object_id;
    object.n0_version = used.version;
    if (used.last_instance) {
      object.previous_inst = used.last_instance->gene.object_id;
      used.last_instance->following_inst = id;
    } else {
      used.object->instance = id;
    }
    used.last_instance = &object;

    const auto body = gxm_add_plain(tree_, gx_type::bodpropfam, id);
    if (instance.kind != gxi_kind::port && !instance.name.empty())
      add_property(
          instance,
          {instance.kind == gxi_kind::part ? "INST" : "GLOBAL", instance.name, instance.name_look},
          body, {});
    for (const auto& property : instance.properties) add_property(instance, property, body, {});
    for (const auto& property : symbol.defaults) {
      const auto own = [&](const auto& given) { return gx_iden(given.name, property.name); };
      if (std::none_of(instance.properties.begin(), instance.properties.end(), own))
        add_property(instance, property, body, {});
    }

    const auto family = gxm_add_plain(tree_, gx_type::pin_family, id);
    for (std::size_t i = 0; i < symbol.pins.size(); ++i) {
      auto& pin = gxm_add<gx_object_pinpropfam_rec_t>(tree_, family, symbol.pins[i].at);
      pin.gene.bounds = {-1000, -1000, 1000, 1000};
      if (i == 0 && instance.kind == gxi_kind::port)
        add_property(instance, {"NET", instance.name, instance.name_look}, pin.gene.object_id,
                     symbol.pins[i].at);
      const int net = i < instance.nets.size() ? instance.nets[i] : -1;
      if (net >= 0)
        gx_at(pins_of_net_, net).push_back({gxi_on_sheet(instance, symbol.pins[i].at), &pin});
    }
  }

  // `origin`: of the father, in coordinates of the symbol.
  void add_property(const gxi_instance_t& instance, const gxi_property_t& property, int father,
                    gx_pointreal_t origin) {
    gxm_property_t stored{.name = property.name, .value = property.value, .at = {}};
    int turns = 0;
    if (property.look && !property.value.empty()) {
      const auto line = gxi_whole_line(property.value, *property.look);
      const auto below = gxi_below(instance, line, property.look->height);
      stored.at = gx_pointreal_t{below.at.x - origin.x, below.at.y - origin.y};
      stored.height = property.look->height;
      stored.color = property.look->color;
      turns = below.rotate;
    }
    gxm_add_property(tree_, stored, father, false, turns);
  }

  void add_net(std::size_t index) {
    const auto& net = sheet_.nets[index];
    const auto& pins = pins_of_net_[index];
    if (pins.empty() && net.segments.empty() && net.name.empty()) return;
    auto& object = gxm_add<gx_object_net_rec_t>(tree_, nets_, {});
    const auto id = object.gene.object_id;
    std::vector<gx_pointreal_t> places;
    for (const auto& pin : pins) {
      pin.pin->net = id;
      places.push_back(pin.at);
    }
    const auto wiring = gxi_wire(net.segments, places);
    const auto start = moved(!wiring.ends.empty() ? wiring.ends[0].at
                             : !places.empty()    ? places[0]
                                                  : gx_pointreal_t{});
    add_net_properties(net, id, start);
    std::vector<gx_object_id_t> ids;
    for (const auto& end : wiring.ends) {
      if (end.pin >= 0) {
        auto& pin = *gx_at(pins, end.pin).pin;
        pin.dotted = end.degree > 1;
        ids.push_back(pin.gene.object_id);
        continue;
      }
      auto& vertex = gxm_add<gx_object_vertex_rec_t>(tree_, vertices_, moved(end.at));
      vertex.gene.bounds = {0, 0, 0, 0};
      vertex.net = id;
      vertex.dotted = end.degree > 2;
      ids.push_back(vertex.gene.object_id);
    }
    for (const auto& piece : wiring.pieces) {
      const auto a = wiring.ends[piece.end1].at, b = wiring.ends[piece.end2].at;
      auto& segment = gxm_add<gx_object_segment_rec_t>(tree_, id, moved(a));
      segment.line_color = piece.color;
      segment.line_width = piece.width;
      segment.vertex1 = ids[piece.end1];
      segment.vertex2 = ids[piece.end2];
      segment.gene.bounds = {std::min(0, b.x - a.x), std::min(0, b.y - a.y), std::max(0, b.x - a.x),
                             std::max(0, b.y - a.y)};
    }
  }

  void add_net_properties(const gxi_net_t& net, gx_object_id_t id, gx_pointreal_t start) {
    if (net.name.empty() && net.properties.empty()) return;
    const auto family = gxm_add_plain(tree_, gx_type::property_family, id);
    const auto add = [&](const gxi_property_t& property) {
      gxm_property_t stored{.name = property.name, .value = property.value, .at = {}};
      if (property.look && !property.value.empty()) {
        const auto look = moved(*property.look);
        stored = gxi_property_of_line(property.name, gxi_whole_line(property.value, look), look);
      }
      gxm_add_property(tree_, stored, family, false, stored.vertical ? 1 : 0, start);
    };
    if (!net.name.empty()) add({"NET", net.name, net.name_look});
    for (const auto& property : net.properties) add(property);
  }

  void add_frames() {
    std::vector<gxm_shape_t> shapes;
    for (const auto& shape : sheet_.shapes) gxi_take_shape(shapes, shape);
    std::vector<gxm_property_t> texts;
    gxi_text_names_t names;
    for (const auto& text : sheet_.texts) {
      const auto look = moved(text.look);
      for (const auto& line : gxi_lines(text.value, look))
        texts.push_back(gxi_property_of_line(names.next(), line, look));
    }
    std::size_t text = 0;
    for (int frame = 1; frame == 1 ? !shapes.empty() || !texts.empty() : text < texts.size();
         ++frame) {
      const auto id = gxm_add_plain(tree_, gx_type::frame, frames_);
      const auto graphics = gxm_add_plain(tree_, gx_type::graphics, id);
      if (frame == 1)
        for (auto shape : shapes) {
          for (auto& point : shape.points) point = moved(point);
          gxm_add_shape(tree_, shape, graphics);
        }
      const auto family = gxm_add_plain(tree_, gx_type::property_family, id);
      gxm_add_property(tree_,
                       {.name = "FREXP",
                        .value = frame == 1 ? "DRAWING" : "DRAWING" + std::to_string(frame),
                        .at = {}},
                       family, false, 0);
      for (std::size_t i = 0; i < texts_of_frame && text < texts.size(); ++i, ++text)
        gxm_add_property(tree_, texts[text], family, false, texts[text].vertical ? 1 : 0);
    }
  }

  const gxi_design_t& design_;
  const gxi_sheet_t& sheet_;
  const std::function<gxi_symbol_path_t(int)>& symbol_path_;
  gx_pointreal_t shift_{};
  gxm_tree_t tree_;
  std::map<int, used_symbol_t> used_;
  std::vector<std::vector<net_pin_t>> pins_of_net_;
  gx_object_id_t instances_ = 0, symbols_ = 0, nets_ = 0, vertices_ = 0, frames_ = 0;
};

}  // namespace

gxi_tree_t gxi_build_symbol(const gxi_cell_t& cell) {
  constexpr gx_pointreal_t page{40 * gxm_step, 40 * gxm_step};
  gxm_tree_t tree = gxm_start_tree({}, page, gxm_step, true);
  const auto family = gxm_add_plain(tree, gx_type::component_family, tree.file->primary_object);
  gxm_add_symbol_contents(tree, gxi_plain_symbol(cell.symbol),
                          gxm_add_plain(tree, gx_type::component, family));
  gxm_grow_boxes(tree);
  return tree.file;
}

gxi_tree_t gxi_build_sheet(const gxi_design_t& design, const gxi_cell_t& cell,
                           const std::function<gxi_symbol_path_t(int)>& symbol_path) {
  return sheet_builder(design, *cell.sheet, symbol_path).run();
}
