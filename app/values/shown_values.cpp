#include "app/values/shown_values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/sheet/command_viewport.h"
#include "app/sheet/views.h"
#include "app/state.h"
#include "app/values/asked.h"
#include "app/values/bits.h"
#include "app/values/text_room.h"
#include "app/values/waves.h"
#include "gx/db/object_access.h"
#include "gx/db/objects_of.h"
#include "gx/db/place/geometry.h"
#include "gx/db/queries.h"
#include "gx/display/sheet/draw_shape.h"
#include "gx/display/strokes/stroke_font.h"
#include "gx/display/strokes/stroke_text.h"
#include "gx/display/viewports.h"
#include "gx/picture/object_shapes.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/vext.h"
#include "results/engineering.h"
#include "results/overview.h"

namespace {

constexpr int shown_digits = 4;
constexpr double nothing = 1e-18;  // less is what a simulator leaves of 0
constexpr int text_height = 8;     // pixels
constexpr int advance = text_height * gx_glyph_advance / gx_glyph_height;  // of a character
constexpr int line_step = text_height + 4;
constexpr std::size_t most_of_device = 6;
constexpr int net_color = 5, device_color = 6;
// From the low end to the high one: blue, cyan, green, yellow, red.
constexpr std::array<int, 5> wire_colors{3, 4, 2, 5, 1};

// One picture of the sheet in view.
class values_picture_t {
 public:
  values_picture_t(gx_vpid_t vpid, gx_file_index_t file_index, const kv_results_t& results,
                   std::int32_t visit)
      : picture_{vpid, file_index, &gx_ptrto_gene_file_buf(file_index)},
        results_(results),
        design_(kv_design_of(results)),
        visit_(visit),
        room_(gx_viewport_rec(vpid).clip_wind) {
    find_nets();
  }

  void draw(const kv_values_shown_t& shown) {
    if (shown.colors) draw_colors(shown);
    if (!shown.nets && !shown.devices) return;
    take_texts();
    if (shown.nets) draw_nets();
    if (shown.devices) draw_devices();
  }

 private:
  const gx_file_gene_recf_t& file() const { return *picture_.file; }
  gx_point16_t pixel(gx_pointreal_t p) const {
    return gx_viewport_pt_real_to_pixel(picture_.vpid, p);
  }
  bool is_seen(int id) const {
    return !gx_inq_object_deleted(file(), id) &&
           gx_part_object_inside_vp_bounds(picture_.vpid, file(), id, 0);
  }

  // The flat nets of the sheet's nets, by object: those of the visit, and those that came from
  // above.
  void find_nets() {
    const auto& visits = design_.origins.visits;
    const auto after = static_cast<std::size_t>(visit_) + 1;
    const bool is_last = after == visits.size();
    const kv_visit_t& here = design_.visit(visit_);
    const auto& netlist = design_.netlist;
    const std::int32_t nets_after =
        is_last ? netlist.count(kv_named::net) : visits[after].nets_before;
    for (std::int32_t net = here.nets_before + 1; net <= nets_after; ++net) {
      net_of_[netlist.object_id({kv_named::net, net})].push_back(net);
    }
    const std::int32_t children_after =
        is_last ? netlist.count(kv_named::net_child) : visits[after].children_before;
    for (std::int32_t child = here.children_before + 1; child <= children_after; ++child) {
      net_of_[netlist.object_id({kv_named::net_child, child})].push_back(
          design_.paths.net_of_child(child));
    }
  }

  // The variable of a net of the sheet; null for a bus and for what the file does not have.
  const kv_variable_t* variable_of(int net_id) const {
    const auto found = net_of_.find(net_id);
    if (found == net_of_.end() || found->second.size() != 1) return nullptr;
    return results_.matches.of_net(found->second.front());
  }

  rs_value_t value(kv_variable_t variable) const {
    return kv_value_at(results_, results_.place, variable);
  }
  // "1.8V"; of a complex value its magnitude.
  std::string text_of(const rs_value_t& value, std::string_view unit) const {
    double shown = rs_shown(value, results_.plot().header.is_complex);
    if (std::fabs(shown) < nothing) shown = 0;
    std::string text = rs_engineering(shown, shown_digits, unit);
    std::erase(text, ' ');
    return text;
  }

  // --- the room that the sheet's own texts leave

  void take_texts() {
    gx_sink_t sink{.name = "values", .instance_name = "values"};
    sink.sees = [this](int id, int inst) {
      return gx_part_object_inside_vp_bounds(picture_.vpid, file(), id, inst);
    };
    sink.draw = [this](const gx_shape_t& shape) {
      if (shape.kind == gx_shape_kind::text) room_.take(box_of(shape));
    };
    lb_frame_shapes(file(), sink);
    lb_all_instance_shapes(file(), sink);
    lb_all_net_shapes(file(), sink);
  }
  gx_bounds16_t box_of(const gx_shape_t& shape) const {
    const gx_point16_t at = pixel(shape.points[0]);
    const int height = gx_viewport_obj2d_to_pixel(picture_.vpid, shape.size);
    const int length =
        static_cast<int>(shape.text.size()) * height * gx_glyph_advance / gx_glyph_height;
    if (shape.rotation == 1) return box(at.x - height, at.y - length, height * 3 / 2, length);
    if (shape.rotation == 3) return box(at.x - height / 2, at.y, height * 3 / 2, length);
    return box(at.x, at.y - height, length, height * 3 / 2);
  }
  static gx_bounds16_t box(int x, int y, int width, int height) {
    const auto clamped = [](int v) {
      return static_cast<std::int16_t>(std::clamp(v, -32000, 32000));
    };
    return {clamped(x), clamped(y), clamped(x + width), clamped(y + height)};
  }

  // Draws a text with its upper left corner there, if there is room.
  bool draw_text(std::string_view text, int x, int y, int color) {
    const int width = static_cast<int>(text.size()) * advance;
    if (!room_.take_free(box(x, y, width, text_height))) return false;
    gx_text(picture_.vpid, text, x, y + text_height, text_height, 0, color);
    return true;
  }

  // --- nets

  struct segment_t {
    gx_point16_t from, to;
    int length() const { return std::abs(to.x - from.x) + std::abs(to.y - from.y); }
  };
  // The lines of a net as they are seen, the longest first.
  std::vector<segment_t> segments_of(int net) const {
    const gx_bounds16_t& view = gx_viewport_rec(picture_.vpid).clip_wind;
    std::vector<segment_t> segments;
    gx_sink_t sink{.name = "values", .instance_name = "values"};
    sink.sees = [](int, int) { return true; };
    sink.draw = [&](const gx_shape_t& shape) {
      if (shape.kind != gx_shape_kind::line || shape.points.size() < 2) return;
      const auto inside = [&](gx_point16_t p) {
        return gx_point16_t{std::clamp(p.x, view.xmin, view.xmax),
                            std::clamp(p.y, view.ymin, view.ymax)};
      };
      segments.push_back({inside(pixel(shape.points[0])), inside(pixel(shape.points[1]))});
    };
    gx_net_shapes(file(), net, sink);
    std::ranges::stable_sort(segments, std::ranges::greater(), &segment_t::length);
    return segments;
  }

  // The flat bus of a net of the sheet; 0 when it is none.
  std::int32_t bus_of(int net_id) const {
    const auto found = net_of_.find(net_id);
    if (found == net_of_.end()) return 0;
    const auto at = std::ranges::find_if(
        found->second, [&](std::int32_t net) { return design_.netlist.is_bus(net); });
    return at == found->second.end() ? 0 : *at;
  }

  // Of a bus, from its first bit to its last; nothing when the file lacks one.
  std::vector<rs_value_t> values_of_bits(std::int32_t bus) const {
    const std::int32_t first = design_.netlist.first_member(bus);
    std::vector<rs_value_t> values;
    for (std::int32_t i = 0; first != 0 && i < design_.netlist.width(bus); ++i) {
      const kv_variable_t* const variable = results_.matches.of_net(first + i);
      if (variable == nullptr) return {};
      values.push_back(value(*variable));
    }
    return values;
  }

  // "0xa", "1.8V 0V 1.8V 0V", of many bits "0V..1.8V"; "" when there is nothing to show.
  std::string bus_text(std::int32_t bus) const {
    constexpr std::size_t most_told = 8;
    const std::vector<rs_value_t> values = values_of_bits(bus);
    if (values.empty()) return "";
    const kv_values_shown_t& shown = kv_pext.values_shown;
    const bool falls = design_.netlist.bus_start(bus) > design_.netlist.bus_end(bus);
    if (const auto number = kv_number_of_bits(values, falls, shown.low, shown.high);
        number && shown.colors) {
      char digits[20];
      return "0x" + std::string(digits, std::to_chars(digits, digits + 20, *number, 16).ptr);
    }
    if (values.size() > most_told) {
      const auto [low, high] = std::ranges::minmax_element(values, {}, &rs_value_t::re);
      return text_of(*low, "V") + ".." + text_of(*high, "V");
    }
    std::string text;
    for (const rs_value_t& each : values) text += (text.empty() ? "" : " ") + text_of(each, "V");
    return text;
  }

  std::string net_text(int net_id) const {
    if (const kv_variable_t* const variable = variable_of(net_id))
      return text_of(value(*variable), "V");
    const std::int32_t bus = bus_of(net_id);
    return bus != 0 ? bus_text(bus) : "";
  }

  void draw_nets() {
    constexpr std::size_t most_tried = 4;
    for (const int net : lb_nets(file())) {
      if (!is_seen(net)) continue;
      const std::string text = net_text(net);
      if (text.empty()) continue;
      const int width = static_cast<int>(text.size()) * advance;
      auto segments = segments_of(net);
      if (segments.size() > most_tried) segments.resize(most_tried);
      for (const segment_t& segment : segments) {
        const int x = (segment.from.x + segment.to.x) / 2, y = (segment.from.y + segment.to.y) / 2;
        const bool is_upright = segment.from.x == segment.to.x;
        if (segment.length() < text_height) continue;
        const bool is_drawn =
            is_upright ? draw_text(text, x + 4, y - text_height / 2, net_color) ||
                             draw_text(text, x - 4 - width, y - text_height / 2, net_color)
                       : draw_text(text, x - width / 2, y - text_height - 4, net_color) ||
                             draw_text(text, x - width / 2, y + 4, net_color);
        if (is_drawn) break;
      }
    }
  }

  // --- colours

  void draw_colors(const kv_values_shown_t& shown) {
    gx_sink_t sink{.name = "values", .instance_name = "values"};
    sink.sees = [](int, int) { return true; };
    int color = 0;
    sink.draw = [&](const gx_shape_t& shape) {
      if (shape.kind == gx_shape_kind::line || shape.kind == gx_shape_kind::dot)
        gx_draw_shape(picture_, shape, nullptr, color);
    };
    for (const int net : lb_nets(file())) {
      const kv_variable_t* const variable = variable_of(net);
      if (variable == nullptr || !is_seen(net)) continue;
      const double number = rs_shown(value(*variable), results_.plot().header.is_complex);
      const double part = (number - shown.low) / (shown.high - shown.low);
      if (!(part == part)) continue;
      const double steps = std::clamp(part, 0.0, 0.999) * std::size(wire_colors);
      color = wire_colors[static_cast<std::size_t>(steps)];
      gx_net_shapes(file(), net, sink);
    }
  }

  // --- devices

  std::vector<std::string> texts_of(std::int32_t inst) const {
    // What a designer looks for first; then what else there is.
    constexpr std::array<std::string_view, 6> first{"id", "gm", "vgs", "vds", "vth", "vdsat"};
    std::vector<const kv_device_value_t*> chosen;
    const auto add = [&](const kv_device_value_t& each) {
      const bool is_new = std::ranges::none_of(chosen, [&](const kv_device_value_t* other) {
        return rs_parameter_name(other->parameter) == rs_parameter_name(each.parameter);
      });
      if (is_new && chosen.size() < most_of_device) chosen.push_back(&each);
    };
    const auto values = results_.matches.of_device(inst);
    for (const auto name : first) {
      for (const auto& each : values) {
        if (rs_parameter_name(each.parameter) == name) add(each);
      }
    }
    for (const auto& each : values) add(each);
    std::vector<std::string> texts;
    for (const auto* each : chosen) {
      texts.push_back(each->parameter + "=" +
                      text_of(value(each->variable), kv_unit_of(results_, *each)));
    }
    return texts;
  }

  void draw_devices() {
    const std::string above(kv_visit_path(design_.netlist, design_.origins, visit_));
    for (const int id : lb_instances(file())) {
      if (!is_seen(id)) continue;
      const std::string key = kv_path_key(above + "/" + lb_inst_name(file(), id));
      for (const auto object : design_.paths.find({&key, 1}, SIZE_MAX)) {
        if (object.what != kv_named::inst || design_.netlist.object_id(object) != id) continue;
        draw_device(id, texts_of(object.index));
      }
    }
  }

  // To the right of the device, else to its left: the lines that have room.
  void draw_device(int id, const std::vector<std::string>& texts) {
    const gx_boundsreal_t bounds = gx_object_abs_origin_bounds(file(), id, 0).bounds;
    const gx_point16_t p = pixel({bounds.xmin, bounds.ymin}), q = pixel({bounds.xmax, bounds.ymax});
    const int right = std::max(p.x, q.x) + 4, left = std::min(p.x, q.x) - 4;
    const int height = static_cast<int>(texts.size()) * line_step;
    int y = (p.y + q.y) / 2 - height / 2;
    for (const auto& text : texts) {
      const int width = static_cast<int>(text.size()) * advance;
      if (!draw_text(text, right, y, device_color)) draw_text(text, left - width, y, device_color);
      y += line_step;
    }
  }

  const gx_picture_t picture_;
  const kv_results_t& results_;
  const kv_expanded_t design_;
  std::int32_t visit_;
  kv_text_room_t room_;
  std::unordered_map<int, std::vector<std::int32_t>> net_of_;
};

void draw_values(gx_vpid_t vpid, gx_file_index_t file_index) {
  if (vpid != gx_vext.viewport_edit || file_index != kv_pext.file_id_cur || !gx_is_seen()) return;
  std::string fault;
  const kv_results_t* const results = kv_results_now(fault);
  if (results == nullptr || results->plot().nb_rows == 0) return;
  const std::int32_t visit = kv_visit_at(kv_design_of(*results), gx_view(kv_pext.cur_sim_path));
  if (visit < 0) return;
  values_picture_t(vpid, file_index, *results, visit).draw(kv_pext.values_shown);
}

}  // namespace

void kv_show_values(const kv_values_shown_t& shown) {
  kv_pext.values_shown = shown;
  kv_set_sheet_overlay(shown.any() ? draw_values : nullptr);
}

void kv_redraw_values() {
  if (kv_pext.values_shown.any()) {
    kv_redraw_views();
  } else {
    kv_redraw_waves();
  }
}
