// From the sheets of KiCad to a drawing: cells, references, names of the whole design.
#include "import/kicad/reader.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "gx/text/at.h"
#include "gx/text/spelling.h"
#include "import/drawing/hierarchy.h"
#include "import/drawing/kept_properties.h"
#include "import/drawing/names.h"
#include "import/drawing/placement.h"
#include "import/drawing/source_file.h"
#include "import/kicad/frame.h"
#include "import/kicad/globals.h"
#include "import/kicad/lines.h"
#include "import/kicad/nets.h"
#include "import/kicad/picture.h"
#include "import/kicad/references.h"
#include "import/kicad/sheets.h"
#include "import/kicad/signs.h"

namespace {

namespace fs = std::filesystem;

// Up to here a power symbol names the net of its hidden pin, later that of its value.
constexpr int version_of_values = 20230221;

using loaded_t = gxi_kicad_loaded_t;

// The block that a sheet is read for, and the names of its pins here.
struct seen_from_above_t {
  std::vector<std::string> pins{};
  std::vector<std::vector<std::string>> names{};
};

class kicad_reader {
 public:
  explicit kicad_reader(const gxi_input_t& input) : input_(input) {}

  gxi_design_t run() {
    if (input_.pages.size() > 1)
      gxi_refuse({input_.pages[1].native(), 1}, "a drawing of KiCad has one top sheet");
    const auto path = fs::absolute(input_.pages.front()).lexically_normal();
    sheets_.emplace(path, design_);
    const auto& top = sheets_->top();
    references_.emplace(top.records);
    design_.cells.emplace_back().name = path.stem().string();
    read_sheet(0, top, {}, "/" + top.records.id);
    globals_.share(design_);
    uses_.resize(design_.cells.size());
    auto lines =
        gxi_kicad_reference_lines(uses_, *references_, "/" + top.records.id, design_.warnings);
    if (!lines.empty()) design_.beside.push_back({"references", std::move(lines)});
    gxi_keep_most_used(design_, {{"Value"}}, {});
    design_.kept_of_pins = {"FUNCTION", std::string(gxi_electrical)};
    return std::move(design_);
  }

 private:
  gxi_cell_t& cell(int index) { return gx_at(design_.cells, index); }
  gxi_kicad_cell_use_t& use_of(int index) {
    if (uses_.size() < design_.cells.size()) uses_.resize(design_.cells.size());
    return gx_at(uses_, index);
  }
  void warn(const loaded_t& from, int line, const std::string& what) {
    gxm_complain(design_.warnings, {from.name, line}, what);
  }

  // --- sheets
  struct sheet_t {
    const loaded_t& from;
    const std::string& path;  // the ids down to its first use
    gxi_kicad_sheet_t joins{};
    std::vector<const gxi_kicad_symbol_t*> symbols{};  // by symbol placed; nullptr: missing
    std::vector<int> units{};
    std::vector<std::string> references{};
    std::vector<int> blocks{};  // their cells
    std::vector<gxi_kicad_block_sign_t> signs{};
  };

  void read_sheet(int index, const loaded_t& from, const seen_from_above_t& above,
                  const std::string& path) {
    const fs::path paths[] = {from.path};
    const auto level = hierarchy_.enter(paths);
    sheet_t here{.from = from, .path = path};
    here.joins.file = &from.records;
    here.joins.name = from.name;
    here.joins.aliases = sheets_->aliases();
    for (const auto& label : from.records.labels)
      here.joins.labels.push_back(sheets_->name(from, label.text.text));
    for (const auto& placed : from.records.placed) place(here, placed);
    for (const auto& block : from.records.blocks) read_block(here, block);
    const auto joined = gxi_kicad_join(here.joins);
    for (const auto& one : joined.overridden)
      warn(from, one.line,
           "the net " + one.name + " below is " + one.here + " here; others called " + one.name +
               " stay apart from it");
    faces_.insert_or_assign(&from, gxi_kicad_face(joined));
    cell(index).sheet = draw(here, joined, above, index);
  }

  static gxi_kicad_point_t placed_at(const gxi_kicad_placed_t& placed, gxi_kicad_point_t p) {
    p.y = -p.y;
    for (int i = 0; i < placed.rotate; ++i) p = {p.y, -p.x};
    if (placed.mirror == 'x') p.y = -p.y;
    if (placed.mirror == 'y') p.x = -p.x;
    return {placed.at.x + p.x, placed.at.y + p.y};
  }

  void place(sheet_t& here, const gxi_kicad_placed_t& placed) {
    const auto& library = here.from.records.symbols;
    const auto found = library.find(placed.symbol);
    const auto* const symbol = found == library.end() ? nullptr : found->second.get();
    if (symbol == nullptr) {
      design_.missing.insert(placed.symbol);
      warn(here.from, placed.line, "the symbol " + placed.symbol + " is not in the sheet");
    }
    const int unit = references_->unit(placed, here.path);
    here.symbols.push_back(symbol);
    here.units.push_back(unit);
    here.references.push_back(references_->reference(placed, here.path));
    auto& met = here.joins.pins.emplace_back();
    auto& joined = here.joins.joined.emplace_back();
    if (symbol == nullptr) return;
    const auto value =
        sheets_->field_text(here.from, placed.fields, here.references.back(), value_of(placed));
    for (const auto* const pin : gxi_kicad_pins(*symbol, unit, placed.style)) {
      auto& one = met.emplace_back();
      one.pin = pin;
      one.at = placed_at(placed, pin->at);
      if (pin->type != "power_in" || (!symbol->power && !pin->hidden)) continue;
      one.everywhere = !symbol->local_power;
      const bool by_pin =
          !symbol->power || (pin->hidden && here.from.records.version < version_of_values);
      one.power = gxi_kicad_unescaped(by_pin ? pin->name : value);
    }
    join_jumpers(*symbol, met, joined);
  }

  static void join_jumpers(const gxi_kicad_symbol_t& symbol,
                           const std::vector<gxi_kicad_met_t>& pins,
                           std::vector<std::pair<int, int>>& joined) {
    const auto join = [&](const auto& is_one) {
      int first = -1;
      for (std::size_t i = 0; i < pins.size(); ++i) {
        if (!is_one(pins[i].pin->number)) continue;
        if (first >= 0) joined.emplace_back(first, static_cast<int>(i));
        first = static_cast<int>(i);
      }
    };
    for (const auto& group : symbol.jumpers)
      join([&](const std::string& number) {
        return std::find(group.begin(), group.end(), number) != group.end();
      });
    if (!symbol.same_numbers_joined) return;
    std::set<std::string> numbers;
    for (const auto& pin : pins) numbers.insert(pin.pin->number);
    for (const auto& one : numbers) join([&](const std::string& number) { return number == one; });
  }

  static std::string_view value_of(const gxi_kicad_placed_t& placed) {
    for (const auto& field : placed.fields)
      if (field.name == "Value") return field.value.text;
    return {};
  }

  void read_block(sheet_t& here, const gxi_kicad_block_t& block) {
    std::vector<std::string> pins;
    for (const auto& pin : block.pins) pins.push_back(sheets_->name(here.from, pin.text.text));
    auto sign = gxi_kicad_block_sign(block, pins, sheets_->aliases());
    const auto& below = sheets_->below(here.from, block);
    const fs::path paths[] = {below.path};
    const auto [index, is_new] = hierarchy_.cell(&below, gxi_kicad_sign_key(sign.symbol), paths,
                                                 {here.from.name, block.line});
    if (is_new) {
      cell(index).name = below.path.stem().string();
      cell(index).symbol = sign.symbol;
      cell(index).symbol.source = {here.from.name, block.line};
      read_sheet(index, below, {pins, sign.names}, here.path + "/" + block.id);
    }
    here.blocks.push_back(index);
    here.signs.push_back(std::move(sign));
    here.joins.faces.push_back(&faces_.at(&below));
    here.joins.block_pins.push_back(std::move(pins));
  }

  // --- drawing
  gxi_sheet_t draw(const sheet_t& here, const gxi_kicad_joined_t& joined,
                   const seen_from_above_t& above, int index) {
    gxi_sheet_t sheet;
    sheet.source = {here.from.name, 1};
    for (const auto& net : joined.nets) {
      auto& made = sheet.nets.emplace_back();
      made.name = net.name;
      made.source = {here.from.name, net.line};
      take_port(net, above, made);
      if (made.port.empty() && !net.globals.empty()) {
        made.global = net.globals.front();
        globals_.join(net.globals);
      }
      if (net.no_connect) made.properties.push_back({std::string(gxi_noconn), "yes", {}});
    }
    mark_supplies(here, joined, sheet);
    gxi_kicad_draw_lines(here.from.records, joined, sheet);
    std::set<std::string> ports;
    for (std::size_t i = 0; i < here.from.records.labels.size(); ++i)
      draw_label(here, joined, i, ports, sheet);
    for (std::size_t i = 0; i < here.from.records.placed.size(); ++i)
      draw_placed(here, joined, i, index, sheet);
    for (std::size_t i = 0; i < here.from.records.blocks.size(); ++i)
      draw_block(here, joined, i, index, sheet);
    int beyond = 0;
    for (const auto& shape : here.from.records.shapes) {
      if (std::none_of(shape.points.begin(), shape.points.end(),
                       [&](const auto& point) { return is_on_paper(here.from.records, point); })) {
        ++beyond;
        continue;
      }
      for (auto& line : gxi_kicad_drawn(shape, false, gxi_kicad_colors.note))
        sheet.shapes.push_back(std::move(line));
    }
    draw_frame(here.from, sheet);
    for (const auto& text : here.from.records.texts) {
      if (text.hidden) continue;
      if (is_on_paper(here.from.records, text.at))
        write(here.from, text, gxi_kicad_colors.note, sheet);
      else
        ++beyond;
    }
    if (beyond > 0)
      warn(here.from, 1,
           std::to_string(beyond) + (beyond == 1 ? " text or line" : " texts and lines") +
               " beyond the paper, which nobody sees, left out");
    return sheet;
  }

  void draw_frame(const loaded_t& from, gxi_sheet_t& sheet) const {
    auto title = from.records.title;
    for (auto& [keyword, value] : title) value = sheets_->text(from, value);
    gxi_kicad_draw_frame(from.records.paper, title, from.path.filename().string(), sheet);
  }

  // Power symbols are no parts of a netlist: what they say of a supply is said of its net, that it
  // needs a source, or has one.
  static void mark_supplies(const sheet_t& here, const gxi_kicad_joined_t& joined,
                            gxi_sheet_t& sheet) {
    std::map<int, bool> has_source;  // by net
    for (std::size_t i = 0; i < here.symbols.size(); ++i) {
      if (here.symbols[i] == nullptr) continue;
      if (!here.symbols[i]->power && !here.references[i].starts_with('#')) continue;
      const auto& pins = here.joins.pins[i];
      for (std::size_t pin = 0; pin < pins.size(); ++pin)
        if (const auto& type = pins[pin].pin->type; type == "power_in" || type == "power_out")
          has_source[gx_at(joined.of_pin[i], pin)] |= type == "power_out";
    }
    for (const auto& [net, has] : has_source)
      gx_at(sheet.nets, net)
          .properties.push_back({std::string(gxi_electrical), has ? "power_out" : "power_in", {}});
  }

  static bool is_on_paper(const gxi_kicad_file_t& records, gxi_kicad_point_t at) {
    const auto& paper = records.paper;
    const bool is_within = at.x >= 0 && at.x <= paper.x && at.y >= 0 && at.y <= paper.y;
    return is_within || paper == gxi_kicad_point_t{};
  }

  // The pin of the cell that brings the net in: the first that the block has.
  static void take_port(const gxi_kicad_net_t& net, const seen_from_above_t& above,
                        gxi_net_t& made) {
    for (const auto& port : net.ports) {
      const auto pin = std::find(above.pins.begin(), above.pins.end(), port.name);
      if (pin == above.pins.end()) continue;
      made.port = gx_at(gx_at(above.names, pin - above.pins.begin()), port.member);
      return;
    }
  }

  void write(const loaded_t& from, gxi_kicad_text_t text, std::uint8_t color, gxi_sheet_t& sheet) {
    text.rotate %= 2;
    gxi_kicad_write(sheets_->text(from, text.text), gxi_kicad_look(text, false, color), sheet.texts,
                    sheet.shapes);
  }

  void draw_label(const sheet_t& here, const gxi_kicad_joined_t& joined, std::size_t i,
                  std::set<std::string>& ports, gxi_sheet_t& sheet) {
    const auto& label = here.from.records.labels[i];
    const auto& text = here.joins.labels[i];
    const auto look = gxi_kicad_label_look(label);
    const int net_index = joined.of_label[i];
    if (label.kind == gxi_kicad_label::other) return;
    if (net_index >= 0) {
      auto& net = gx_at(sheet.nets, net_index);
      const bool brings_in = label.kind == gxi_kicad_label::hierarchical && !net.port.empty() &&
                             net.port == text && ports.insert(net.port).second;
      if (brings_in && gx_spelled_name(net.port) == net.port) {
        auto sign = gxi_kicad_port_sign(label);
        gxi_instance_t port{.kind = gxi_kind::port,
                            .name = net.port,
                            .name_look = look,
                            .symbol = cell_of(std::move(sign), {here.from.name, label.text.line}),
                            .source = {here.from.name, label.text.line},
                            .at = gxi_kicad_on_sheet(label.text.at),
                            .rotate = static_cast<std::uint8_t>(label.text.rotate),
                            .nets = {net_index}};
        sheet.instances.push_back(std::move(port));
        return;
      }
      if (label.kind == gxi_kicad_label::local && !net.name_look &&
          gx_spelled_name(text) == net.name) {
        net.name_look = look;
        return;
      }
    }
    if (label.kind != gxi_kicad_label::local)
      sheet.shapes.push_back(gxi_kicad_flag(
          label, label.kind == gxi_kicad_label::global ? gxi_kicad_readable(text).size() : 0));
    gxi_kicad_write(text, look, sheet.texts, sheet.shapes);
  }

  int cell_of(gxi_symbol_t sign, const gxm_source_t& source) {
    const auto [index, is_new] = hierarchy_.cell(nullptr, gxi_kicad_sign_key(sign), {}, source);
    if (is_new) {
      cell(index).name = sign.name;
      sign.source = source;
      cell(index).symbol = std::move(sign);
    }
    return index;
  }

  static gxi_instance_t instance_of(const loaded_t& from, const gxi_kicad_placed_t& placed) {
    gxi_instance_t instance;
    instance.source = {from.name, placed.line};
    instance.at = gxi_kicad_on_sheet(placed.at);
    // Here the mirror comes before the turn.
    const int turns = placed.mirror == 'x'   ? 6 - placed.rotate
                      : placed.mirror == 'y' ? 4 - placed.rotate
                                             : placed.rotate;
    instance.rotate = static_cast<std::uint8_t>(turns % 4);
    instance.mirror = placed.mirror != 0;
    return instance;
  }

  // A field turns with its symbol about its own place.
  static gxi_look_t look_of(const gxi_instance_t& instance, const gxi_kicad_text_t& text) {
    auto look = gxi_kicad_look(text, false, gxi_kicad_colors.note);
    const auto at = look.at;
    look.at = {};
    auto turned = instance;
    turned.at = {};
    look = gxi_on_sheet(turned, look);
    look.at = at;
    return look;
  }

  void draw_placed(const sheet_t& here, const gxi_kicad_joined_t& joined, std::size_t i, int index,
                   gxi_sheet_t& sheet) {
    const auto& placed = here.from.records.placed[i];
    const auto* const symbol = here.symbols[i];
    const auto& reference = here.references[i];
    auto instance = instance_of(here.from, placed);
    if (symbol == nullptr) {
      gxi_draw_apart(gxi_kicad_missing_sign(placed.symbol), instance, sheet);
      return;
    }
    const int unit = here.units[i];
    if (symbol->power) return draw_power(here, joined, i, std::move(instance), sheet);
    // What a netlist leaves out.
    if (reference.starts_with('#') || !placed.on_board) {
      if (!placed.on_board)
        warn(here.from, placed.line, reference + " is not on the board: it is drawn, not joined");
      gxi_draw_apart(gxi_kicad_part_sign(*symbol, unit, placed.style, placed.alternates), instance,
                     sheet);
      draw_fields(here, placed, reference, instance, sheet);
      return;
    }
    auto sign = gxi_kicad_part_sign(*symbol, unit, placed.style, placed.alternates);
    instance.symbol = cell_of(std::move(sign), instance.source);
    const std::string drawn =
        reference + (symbol->number_of_units > 1 ? gxi_kicad_letters(unit) : std::string());
    instance.name = drawn;
    const auto pins = gxi_kicad_pins(*symbol, unit, placed.style);
    for (const auto pin : gxi_kicad_kept_pins(pins))
      instance.nets.push_back(gx_at(joined.of_pin[i], pin));
    instance.properties.push_back({"CLASS", gxi_kicad_class(reference), {}});
    take_fields(here, placed, reference, instance, sheet);
    if (!placed.populated)
      gxi_kicad_cross_out(instance, gx_at(design_.cells, instance.symbol).symbol, sheet);
    use_of(index).parts.push_back({&placed, take_name(index, drawn)});
    sheet.instances.push_back(std::move(instance));
  }

  // As the builder will call it.
  std::string take_name(int index, const std::string& drawn) {
    return taken_[index].take(gx_spelled_name(drawn));
  }

  void take_fields(const sheet_t& here, const gxi_kicad_placed_t& placed,
                   const std::string& reference, gxi_instance_t& instance, gxi_sheet_t& sheet) {
    for (const auto& field : placed.fields) {
      const auto look = look_of(instance, field.value);
      if (field.name == "Reference") {
        if (field.value.hidden) continue;
        if (gx_spelled_name(instance.name) == instance.name)
          instance.name_look = look;
        else
          gxi_kicad_write(instance.name, look, sheet.texts, sheet.shapes);
        continue;
      }
      auto value = gxi_kicad_readable(
          sheets_->field_text(here.from, placed.fields, reference, field.value.text));
      if (value.empty() || value == "~") continue;
      gxi_property_t property{gxi_property_name(field.name), std::move(value), {}};
      if (!field.value.hidden) property.look = look;
      instance.properties.push_back(std::move(property));
    }
    const std::pair<bool, const char*> flags[] = {{!placed.populated, "DNP"},
                                                  {!placed.in_bom, "NOT_IN_BOM"},
                                                  {!placed.in_simulation, "NOT_IN_SIMULATION"}};
    for (const auto& [is_set, name] : flags)
      if (is_set) instance.properties.push_back({name, "yes", {}});
  }

  void draw_fields(const sheet_t& here, const gxi_kicad_placed_t& placed,
                   const std::string& reference, const gxi_instance_t& instance,
                   gxi_sheet_t& sheet) {
    for (const auto& field : placed.fields)
      if (!field.value.hidden)
        gxi_kicad_write(
            field.name == "Reference"
                ? reference
                : sheets_->field_text(here.from, placed.fields, reference, field.value.text),
            look_of(instance, field.value), sheet.texts, sheet.shapes);
  }

  // A power symbol is an instance where its net is one of the whole design on this sheet; where
  // the net comes from above, or is the sheet's own, it is only drawn.
  void draw_power(const sheet_t& here, const gxi_kicad_joined_t& joined, std::size_t i,
                  gxi_instance_t instance, gxi_sheet_t& sheet) {
    const auto& placed = here.from.records.placed[i];
    auto sign = gxi_kicad_power_sign(*here.symbols[i], here.units[i], placed.style);
    const auto& met = here.joins.pins[i];
    const bool names = !met.empty() && met.front().everywhere && !met.front().power.empty();
    if (!names || gx_at(sheet.nets, joined.of_pin[i].front()).global.empty()) {
      sign.pins.clear();
      gxi_draw_apart(sign, instance, sheet);
    } else {
      const int net = joined.of_pin[i].front();
      instance.kind = gxi_kind::global;
      instance.symbol = cell_of(std::move(sign), instance.source);
      instance.name = gx_at(sheet.nets, net).global;
      instance.nets = {net};
      sheet.instances.push_back(instance);
    }
    draw_fields(here, hidden_reference(placed), here.references[i], instance, sheet);
  }
  static gxi_kicad_placed_t hidden_reference(gxi_kicad_placed_t placed) {
    std::erase_if(placed.fields, [](const auto& field) { return field.name == "Reference"; });
    return placed;
  }

  void draw_block(const sheet_t& here, const gxi_kicad_joined_t& joined, std::size_t i, int index,
                  gxi_sheet_t& sheet) {
    const auto& block = here.from.records.blocks[i];
    gxi_instance_t instance;
    instance.symbol = here.blocks[i];
    instance.source = {here.from.name, block.line};
    instance.at = gxi_kicad_on_sheet(block.at);
    instance.name = sheets_->field_text(here.from, block.fields, {}, block.name());
    for (std::size_t pin = 0; pin < joined.of_block[i].size(); ++pin)
      if (const auto& members = joined.of_block[i][pin]; !here.signs[i].names[pin].empty())
        instance.nets.insert(instance.nets.end(), members.begin(), members.end());
    for (const auto& field : block.fields) {
      if (field.value.hidden) continue;
      auto text = field.value;
      text.rotate %= 2;
      const auto look = gxi_kicad_look(text, false, gxi_kicad_colors.block);
      const bool is_name = field.name == "Sheetname" || field.name == "Sheet name";
      if (is_name && gx_spelled_name(instance.name) == instance.name)
        instance.name_look = look;
      else
        gxi_kicad_write(sheets_->field_text(here.from, block.fields, {}, field.value.text), look,
                        sheet.texts, sheet.shapes);
    }
    use_of(index).blocks.push_back({&block, take_name(index, instance.name), here.blocks[i]});
    sheet.instances.push_back(std::move(instance));
  }

  const gxi_input_t& input_;
  gxi_design_t design_{};
  gxi_hierarchy_t hierarchy_{design_};
  std::optional<gxi_kicad_sheets_t> sheets_{};
  std::optional<gxi_kicad_references_t> references_{};
  std::map<const loaded_t*, gxi_kicad_face_t> faces_{};
  std::vector<gxi_kicad_cell_use_t> uses_{};  // by cell
  std::map<int, gxi_names_t> taken_{};        // by cell
  gxi_kicad_globals_t globals_{};
};

}  // namespace

gxi_design_t gxi_read_kicad(const gxi_input_t& input) { return kicad_reader(input).run(); }

bool gxi_is_kicad(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const auto begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return false;
  text.remove_prefix(begin);
  return text.starts_with("(kicad_sch") || text.starts_with("EESchema Schematic File");
}
