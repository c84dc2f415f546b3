// Sheets as JSON. Lists of numbers are flat, in the order that the comments give: a page of a large
// design is mostly these.
#include "pages/page_data.h"

#include <algorithm>
#include <optional>
#include <unordered_map>

#include "expand/sheet/sheet_entry.h"
#include "expand/sheet/sheet_parts.h"
#include "expand/sheet/sheet_slots.h"
#include "gx/db/object_access.h"
#include "gx/db/object_flags.h"
#include "gx/db/owners.h"
#include "gx/db/place/geometry.h"
#include "gx/db/place/page.h"
#include "gx/db/place/placement.h"
#include "gx/picture/object_shapes.h"
#include "gx/picture/sheet_shapes.h"
#include "gx/text/kept_text.h"
#include "gx/vector/path_data.h"
#include "pages/json_text.h"

namespace {
using places_t = std::vector<std::int32_t>;  // by object id

std::int32_t place_at(const places_t& places, int id) {
  return id >= 0 && id < std::ssize(places) ? gx_at(places, id) : -1;
}

// The look of a path: "", "s1" for dashes, "w3" for a width, "f" for filled. Colours are the
// page's.
std::string look_words(const gx_look_t& look) {
  if (look.filled) return "f";
  std::string words = look.style > 0 ? "s" + std::to_string(look.style) : "";
  if (look.width > 1) words.append(words.empty() ? "w" : " w").append(std::to_string(look.width));
  return words;
}

// Shapes relative to an origin: [look, path, ...] and [x, y, height, rotation, text, ...].
class drawing_t {
 public:
  explicit drawing_t(gx_pointreal_t origin = {}) : origin_(origin) {}

  void draw(const gx_shape_t& shape) {
    if (shape.kind == gx_shape_kind::text) add_text(shape, texts_);
    if (!gx_has_path(shape)) return;
    const gx_look_t look = gx_look_of(shape);
    if (look_words(look) != look_words(look_)) flush();
    look_ = look;
    path_.add(shape, origin_);
    for (const auto& p : shape.points) grow(p, 0);
    if (shape.kind == gx_shape_kind::circle) grow(shape.points[0], shape.size);
  }
  void add_text(const gx_shape_t& text, kv_json_text& texts) const {
    if (text.text.empty() || text.size <= 0) return;
    texts.add_units(std::int64_t{text.points[0].x} - origin_.x);
    texts.add_units(std::int64_t{text.points[0].y} - origin_.y);
    texts.add_units(text.size);
    texts.add(text.rotation);
    texts.add(text.text);
  }
  void grow(gx_pointreal_t p, std::int32_t by) {
    const auto box = gx_move({-by, -by, by, by}, p);
    if (!box_) box_ = box;
    box_ = {std::min(box_->xmin, box.xmin), std::min(box_->ymin, box.ymin),
            std::max(box_->xmax, box.xmax), std::max(box_->ymax, box.ymax)};
  }

  std::string paths() {
    flush();
    return "[" + paths_.text + "]";
  }
  std::string texts() const { return "[" + texts_.text + "]"; }
  // The box of all but texts.
  void add_box(kv_json_text& json) const {
    const auto box = box_.value_or(gx_boundsreal_t{origin_.x, origin_.y, origin_.x, origin_.y});
    json.open('[');
    json.add_units(std::int64_t{box.xmin} - origin_.x);
    json.add_units(std::int64_t{box.ymin} - origin_.y);
    json.add_units(std::int64_t{box.xmax} - origin_.x);
    json.add_units(std::int64_t{box.ymax} - origin_.y);
    json.close(']');
  }

 private:
  void flush() {
    if (path_.text().empty()) return;
    paths_.add(look_words(look_));
    paths_.add(path_.text());
    path_.clear();
  }

  gx_pointreal_t origin_;
  gx_path_data path_;
  gx_look_t look_;
  kv_json_text paths_, texts_;
  std::optional<gx_boundsreal_t> box_;
};

// Whether a text is a property of an instance itself or of one of its pins, not of its symbol.
bool is_own(const gx_file_gene_recf_t& file, int id) {
  for (const auto* object = gx_object(file, id); object != nullptr;
       object = gx_object(file, object->father)) {
    if (object->object_type == gx_type::instance) return true;
    if (object->object_type == gx_type::symbol) return false;
  }
  return false;
}

class page_writer_t {
 public:
  explicit page_writer_t(kv_design_pages_t& pages) : pages_(pages) {
    for (std::size_t i = 0; i < pages.pages.size(); ++i)
      cell_of_[pages.pages[i].component] = static_cast<int>(i);
  }

  std::string write(const kv_page_extras_t& extras) {
    json_.open('{');
    json_.name("name");
    json_.add(pages_.name);
    json_.open("cells", '[');
    for (const auto& page : pages_.pages) write_cell(page);
    json_.close(']');
    json_.open("signs", '[');
    for (const auto* sign : signs_) json_.add_raw(*sign);
    json_.close(']');
    json_.open("globals", '[');
    for (const auto& global : pages_.sheets->globals) json_.add(global.nvalue);
    json_.close(']');
    write_extras(extras);
    json_.close('}');
    return std::move(json_.text);
  }

 private:
  void write_cell(const kv_page_t& page) {
    const kv_component_t& component = *page.component;
    const auto& file = *component.file;
    kv_sheet_t& sheet = page.component->sheet;
    const auto size = gx_inq_page_dim(file);
    json_.open('{');
    json_.name("name");
    json_.add(component.directory.empty() ? pages_.name : component.directory);
    json_.name("file");
    json_.add(component.sheet_path);
    json_.name("path");
    json_.add(page.path);
    // Nothing of such a sheet is expanded.
    json_.name("ends");
    json_.add(sheet.ends_at_port || sheet.deleted_object != 0 ? 1 : 0);
    json_.open("size", '[');
    json_.add_units(size.x);
    json_.add_units(size.y);
    json_.close(']');
    drawing_t frames;
    gx_sink_t sink{.name = "page", .instance_name = "page"};
    sink.draw = [&](const gx_shape_t& shape) { frames.draw(shape); };
    lb_frame_shapes(file, sink);
    json_.name("paths");
    json_.add_raw(frames.paths());
    json_.name("texts");
    json_.add_raw(frames.texts());
    write_joining(sheet);
    write_nets(file, sheet);
    write_kinds(file, sheet);
    write_instances(file, sheet);
    json_.close('}');
  }

  void write_joining(const kv_sheet_t& sheet) {
    json_.open("groups", '[');  // master, port, width, first bit, global it meets below
    for (const auto& group : sheet.groups)
      for (const int number :
           {group.master, group.port, group.width, int{group.bus_start}, group.tied_global})
        json_.add(number);
    json_.close(']');
    json_.open("ports", '[');  // name, group, net, whether its pin has several bits
    for (const auto& port : sheet.ports) {
      json_.add(sheet.view(port.name));
      json_.add(port.group);
      json_.add(port.net);
      json_.add(port.is_range ? 1 : 0);
    }
    json_.close(']');
    json_.open("globals", '[');  // which, instance, group, net, member of a bus
    for (const auto& global : sheet.globals) {
      if (!global.usable) continue;
      for (const int number :
           {global.run_global, int{global.object_id}, global.group, global.net, global.position})
        json_.add(number);
    }
    json_.close(']');
    json_.open("joins", '[');  // net, net, object, 0 at a vertex, 1 by name, 2 by port, 3 at a pin
    for (const auto& join : sheet.joins)
      for (const int number :
           {join.a, join.b, int{join.object}, join.is_pin ? 3 : static_cast<int>(join.why)})
        json_.add(number);
    json_.close(']');
  }

  // [id, name, group, [look, [x, y, x, y, ...], ...], [x, y, half size, ...], texts]
  void write_nets(const gx_file_gene_recf_t& file, const kv_sheet_t& sheet) {
    json_.open("nets", '[');
    for (const auto& net : sheet.nets) {
      json_.open('[');
      json_.add(int{net.object_id});
      json_.add(sheet.view(net.name));
      json_.add(net.group);
      kv_json_text dots, texts;
      drawing_t place;
      std::string look = "none yet";
      json_.open('[');
      gx_sink_t sink{.name = "page", .instance_name = "page"};
      sink.draw = [&](const gx_shape_t& shape) {
        if (shape.kind == gx_shape_kind::text) place.add_text(shape, texts);
        if (shape.kind == gx_shape_kind::dot && shape.size > 0)
          for (const int number : {shape.points[0].x, shape.points[0].y, shape.size})
            dots.add_units(number);
        if (shape.kind != gx_shape_kind::line) return;
        const std::string words = look_words(gx_look_of(shape));
        if (words != look) {
          if (look != "none yet") json_.close(']');
          json_.add(words);
          json_.open('[');
          look = words;
        }
        for (const auto& p : shape.points) {
          json_.add_units(p.x);
          json_.add_units(p.y);
        }
      };
      if (!gx_inq_object_deleted(file, net.object_id)) gx_net_shapes(file, net.object_id, sink);
      if (look != "none yet") json_.close(']');
      json_.close(']');
      json_.add_raw("[" + dots.text + "]");
      json_.add_raw("[" + texts.text + "]");
      json_.close(']');
    }
    json_.close(']');
  }

  // What instances of a symbol have in common: [symbol, cell or -1, why not expanded or why no
  // sheet is shown, properties]; the last one is of those that have no symbol that is expanded.
  void write_kinds(const gx_file_gene_recf_t& file, kv_sheet_t& sheet) {
    json_.open("kinds", '[');
    for (auto& symbol : sheet.symbols) {
      auto& component = kv_component_of(*pages_.sheets, sheet, symbol);
      const auto cell = cell_of_.find(&component);
      const bool is_block = kv_first_block(sheet, symbol) != nullptr;
      json_.open('[');
      json_.add(sheet.view(symbol.path));
      json_.add(cell != cell_of_.end() && component.symbol_found ? cell->second : -1);
      std::string why;
      if (!component.symbol_found)
        why = "its symbol does not exist: left out of the expansion";
      else if (is_block && cell == cell_of_.end())
        why = component.fault.empty() ? component.why_no_sheet : component.fault;
      if (why.empty() && is_block && cell == cell_of_.end()) why = "it has no sheet";
      json_.add(component.symbol_found ? 1 : 0);
      json_.add(why);
      const auto& first = gx_at(sheet.insts, symbol.first_inst);
      write_properties(file,
                       {gx_owner_kind::symbol, gx_instance_info_ptr(file, first.object_id).symbol,
                        first.object_id, first.object_id});
      json_.close(']');
    }
    json_.close(']');
  }

  void write_properties(const gx_file_gene_recf_t& file, const gx_owner_t& owner) {
    json_.open('[');
    if (gx_object_id_ok(file, owner.id))
      gx_visit_properties(file, owner, [&](const auto& property) {
        json_.add(gx_view(property.name));
        json_.add(gx_shown_text(gx_view(property.nvalue)));
      });
    json_.close(']');
  }

  // [id, name, sign, x, y, kind, role, texts, properties, groups of pins, bits of pins, pins of the
  // ports of its sheet]. Roles: 0 leaf, 1 block, 2 port, 3 global. Bits: position, width and 1
  // where they leave the bus, for each pin; none where all pins have one.
  void write_instances(const gx_file_gene_recf_t& file, kv_sheet_t& sheet) {
    json_.open("insts", '[');
    const places_t nets = kv_places_by_id(sheet.nets);
    for (auto& inst : sheet.insts) {
      json_.open('[');
      write_placed(file, sheet, inst.object_id, sheet.view(inst.suffix).substr(1), &inst);
      json_.add(inst.symbol);
      json_.add(inst.is_primitive ? 0 : 1);
      write_own(file, inst.object_id);
      write_pins(sheet, inst);
      json_.close(']');
    }
    for (const int id : lb_instances(file)) {
      const auto role = kv_role_of(file, id);
      if (role == kv_inst_role::part || gx_inq_object_deleted(file, id)) continue;
      json_.open('[');
      write_placed(file, sheet, id, lb_inst_name(file, id), nullptr);
      json_.add(-1);
      json_.add(role == kv_inst_role::port ? 2 : 3);
      write_own(file, id);
      json_.open('[');
      if (const auto pin = gx_first_pin(file, id)) {
        const auto net = place_at(nets, gx_pinpropfam_info_ptr(file, pin.pinpropfam).net);
        json_.add(net >= 0 ? gx_at(sheet.nets, net).group : -1);
      }
      json_.close(']');
      json_.close(']');
    }
    json_.close(']');
  }

  void write_pins(kv_sheet_t& sheet, kv_sheet_inst_t& inst) {
    const auto pins = std::span(sheet.pins)
                          .subspan(static_cast<std::size_t>(inst.first_pin),
                                   static_cast<std::size_t>(inst.nb_of_pin));
    json_.open('[');
    for (const auto& pin : pins) json_.add(pin.group);
    json_.close(']');
    json_.open('[');
    if (std::ranges::any_of(pins, [](const auto& pin) {
          return pin.position != 0 || pin.width != 1 || pin.range_error;
        }))
      for (const auto& pin : pins)
        for (const int number : {pin.position, pin.width, pin.range_error ? 1 : 0})
          json_.add(number);
    json_.close(']');
    json_.open('[');
    const auto& symbol = gx_at(sheet.symbols, inst.symbol);
    if (!inst.is_primitive && symbol.component >= 0) {
      const auto& below = *gx_at(pages_.sheets->components, symbol.component);
      if (cell_of_.contains(&below)) {
        const std::int32_t* place = kv_pins_of_ports(sheet, inst, below.sheet);
        for (std::size_t i = 0; i < below.sheet.ports.size(); ++i) json_.add(*place++);
      }
    }
    json_.close(']');
  }

  void write_own(const gx_file_gene_recf_t& file, int id) {
    json_.add_raw("[" + own_texts_ + "]");
    write_properties(file, {gx_owner_kind::body, id, id, id});
  }

  // What equal instances share is a sign: [paths, texts, box, [name, type, x, y, ...] of its pins].
  void write_placed(const gx_file_gene_recf_t& file, const kv_sheet_t& sheet, int id,
                    std::string_view name, const kv_sheet_inst_t* inst) {
    json_.add(id);
    json_.add(name);
    own_texts_.clear();
    const bool is_drawn = !gx_inq_object_deleted(file, id);
    const gx_pointreal_t origin = is_drawn ? lb_inq_inst_origin(file, id) : gx_pointreal_t{};
    json_.add(is_drawn ? sign_of(file, sheet, id, origin, inst) : -1);
    json_.add_units(origin.x);
    json_.add_units(origin.y);
  }

  int sign_of(const gx_file_gene_recf_t& file, const kv_sheet_t& sheet, int id,
              gx_pointreal_t origin, const kv_sheet_inst_t* inst) {
    drawing_t drawing(origin);
    kv_json_text own;
    gx_sink_t sink{.name = "page", .instance_name = "page"};
    sink.draw = [&](const gx_shape_t& shape) {
      if (shape.kind == gx_shape_kind::text && is_own(file, shape.object))
        drawing.add_text(shape, own);
      else
        drawing.draw(shape);
    };
    sink.marks_pin = [&](int pin) { return gx_pinpropfam_info_ptr(file, pin).net <= 0; };
    lb_instance_shapes(file, id, sink);
    own_texts_ = std::move(own.text);

    kv_json_text pins;
    const std::int32_t count = inst != nullptr ? inst->nb_of_pin : 0;
    for (std::int32_t i = 0; i < count; ++i) {
      const auto& pin = gx_at(sheet.pins, inst->first_pin + i);
      const bool is_drawn = !gx_inq_object_deleted(file, pin.object_id);
      const auto at = is_drawn ? gx_pin_abs_origin(file, pin.object_id) : origin;
      if (is_drawn) drawing.grow(at, 0);
      pins.add(sheet.view(pin.suffix).substr(1));
      pins.add(int{pin.io_type});
      pins.add_units(std::int64_t{at.x} - origin.x);
      pins.add_units(std::int64_t{at.y} - origin.y);
    }
    kv_json_text sign;
    sign.open('[');
    sign.add_raw(drawing.paths());
    sign.add_raw(drawing.texts());
    drawing.add_box(sign);
    sign.add_raw("[" + pins.text + "]");
    sign.close(']');
    const auto [at, is_new] =
        sign_of_.try_emplace(std::move(sign.text), static_cast<int>(signs_.size()));
    if (is_new) signs_.push_back(&at->first);
    return at->second;
  }

  void write_extras(const kv_page_extras_t& extras) {
    const auto add_all = [&](const auto& texts) {
      json_.open('[');
      for (const std::string& text : texts) json_.add(text);
      json_.close(']');
    };
    json_.name("findings");
    json_.add(extras.findings);
    json_.open("waivers", '[');
    for (const auto& waiver : extras.waivers)
      for (const auto text : {waiver.rule, waiver.path, waiver.reason, waiver.date})
        json_.add(text);
    json_.close(']');
    const auto& values = extras.values;
    json_.open("values", '{');
    json_.name("file");
    json_.add(values.file);
    json_.name("places");
    add_all(values.places);
    json_.open("nets", '[');
    for (const auto& [path, texts] : values.nets) {
      json_.add(path);
      add_all(texts);
    }
    json_.close(']');
    json_.open("devices", '[');
    for (const auto& device : values.devices) {
      json_.add(device.path);
      json_.add(device.parameter);
      add_all(device.values);
    }
    json_.close(']');
    json_.close('}');
  }

  kv_design_pages_t& pages_;
  kv_json_text json_;
  std::unordered_map<const kv_component_t*, int> cell_of_;
  std::unordered_map<std::string, int> sign_of_;
  std::vector<const std::string*> signs_;  // keys of the map
  std::string own_texts_;                  // of the instance that was placed last
};

// Where a sheet is that has no end below it; "" when there is none.
class depth_t {
 public:
  explicit depth_t(const kv_design_pages_t& pages) : pages_(pages), levels_(pages.pages.size()) {}

  std::string fault() { return measure(0); }

 private:
  std::string measure(int cell) {
    const auto& page = gx_at(pages_.pages, cell);
    const std::string what = page.path.empty() ? pages_.name : page.path;
    int& levels = gx_at(levels_, cell);
    if (levels == under_way) return what + ": contains itself";
    if (levels > 0) return "";
    levels = under_way;
    int deepest = 0;
    for (const auto& [inst, below] : page.below) {
      if (std::string why = measure(below); !why.empty()) return why;
      deepest = std::max(deepest, gx_at(levels_, below));
    }
    gx_at(levels_, cell) = deepest + 1;
    if (deepest < kv_max_levels) return "";
    return what + ": more than " + std::to_string(kv_max_levels) + " levels";
  }

  static constexpr int under_way = -1;
  const kv_design_pages_t& pages_;
  std::vector<int> levels_;
};
}  // namespace

std::string kv_page_data(kv_design_pages_t& pages, const kv_page_extras_t& extras,
                         std::string& why) {
  why = depth_t(pages).fault();
  if (!why.empty()) return {};
  kv_find_tied_globals(*pages.sheets);
  return page_writer_t(pages).write(extras);
}
