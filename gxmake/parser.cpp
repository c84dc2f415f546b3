// Statements of a description, one a line: a table names each with the places where it may stand.
#include "gxmake/parser.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <iterator>
#include <set>

#include "gx/text/strings.h"
#include "gxmake/object_file.h"
#include "gxmake/words.h"
#include "platform/files.h"

namespace {

// What a statement may belong to; the last one of its kind is meant.
enum scope_t : unsigned {
  at_top = 1,
  in_symbol = 2,
  in_sheet = 4,
  in_part = 8,
  in_net = 16,
  in_frame = 32,
  in_file = 64,
  nowhere_drawn = at_top | in_file,
  anywhere_in_sheet = in_sheet | in_part | in_net | in_frame,
};

// The options that words after the fixed ones of a statement may give.
struct options_t {
  std::optional<std::uint8_t> color;
  std::optional<int> width, style, rotate;
  std::optional<gx_pointreal_t> at;
  std::optional<std::int32_t> height, step;
  std::optional<gxm_range_t> range;
  std::vector<gxm_assignment_t> properties;
  bool filled = false, vertical = false, mirror = false, grid_off = false, not_checked = false;
  std::optional<int> errors;
};

// One statement being read. `words[0]` is its keyword.
struct statement_t {
  std::vector<std::string> words;
  gxm_source_t source;
  std::size_t next = 1;    // first word not yet read
  std::size_t indent = 0;  // blanks before it
};

class parser;

struct keyword_t {
  std::string_view word;
  unsigned scopes;
  void (parser::*handler)(statement_t&);
  std::string_view form;  // shown when the statement is not understood
};

// Thrown by the handlers with what is wrong with the statement; caught for each line.
struct complaint_t {
  std::string what;
};

template <typename Value>
Value needed(const std::optional<Value>& value, std::string_view what, std::string_view word) {
  if (!value) throw complaint_t{std::string(what) + " expected, not \"" + std::string(word) + "\""};
  return *value;
}

void check_text(std::string_view text, std::size_t room, std::string_view what) {
  const bool printable =
      std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (text.size() > room)
    throw complaint_t{std::string(what) + " longer than " + std::to_string(room) + " characters"};
  if (!printable) throw complaint_t{std::string(what) + " with a character that is not ASCII"};
}

struct option_t {
  std::string_view word;
  bool has_value;
  void (*take)(options_t& o, const std::string& value);
};
using text_t = const std::string&;
constexpr option_t known_options[] = {
    {"filled", false, [](options_t& o, text_t) { o.filled = true; }},
    {"vertical", false, [](options_t& o, text_t) { o.vertical = true; }},
    {"mirror", false, [](options_t& o, text_t) { o.mirror = true; }},
    {"gridoff", false, [](options_t& o, text_t) { o.grid_off = true; }},
    {"notchecked", false, [](options_t& o, text_t) { o.not_checked = true; }},
    {"color", true,
     [](options_t& o, text_t w) { o.color = needed(gxm_color_named(w), "a color", w); }},
    {"at", true, [](options_t& o, text_t w) { o.at = needed(gxm_point(w), "a point x,y", w); }},
    {"bits", true, [](options_t& o, text_t w) { o.range = needed(gxm_range(w), "bits A:B", w); }},
    {"height", true,
     [](options_t& o, text_t w) { o.height = needed(gxm_length(w), "a height", w); }},
    {"step", true, [](options_t& o, text_t w) { o.step = needed(gxm_length(w), "a step", w); }},
    {"width", true,
     [](options_t& o, text_t w) { o.width = needed(gxm_integer(w, 1, 99), "a width 1..99", w); }},
    {"style", true,
     [](options_t& o, text_t w) { o.style = needed(gxm_integer(w, 0, 4), "a style 0..4", w); }},
    {"rotate", true,
     [](options_t& o, text_t w) {
       o.rotate = needed(gxm_integer(w, 0, 3), "0..3 quarter turns", w);
     }},
    {"errors", true,
     [](options_t& o, text_t w) { o.errors = needed(gxm_integer(w, 0, 9999), "a number", w); }},
};

class parser {
 public:
  parser(gxm_input_t& input, std::string_view name) : input_(input), file_(name) {}

  void run(std::string_view text);

 private:
  // --- words of the statement
  const std::string& word(statement_t& s, std::string_view what) {
    if (s.next >= s.words.size()) throw complaint_t{std::string(what) + " is missing"};
    return s.words[s.next++];
  }
  std::string name(statement_t& s, std::string_view what, std::size_t room = 63) {
    const auto& text = word(s, what);
    check_text(text, room, what);
    return text;
  }
  gx_pointreal_t point(statement_t& s) {
    const auto& text = word(s, "a point x,y");
    return needed(gxm_point(text), "a point x,y", text);
  }
  options_t options(statement_t& s, std::string_view allowed);
  gxm_property_t property(const gxm_assignment_t& assignment, const options_t& look);

  // --- what the statement belongs to
  gxm_symbol_t& symbol() { return input_.design.symbols.back(); }
  gxm_sheet_t& sheet() { return input_.design.sheets.back(); }
  std::vector<gxm_shape_t>& shapes();
  void default_frame();

  // --- statements
  void include_file(statement_t& s);
  void start_symbol(statement_t& s);
  void start_sheet(statement_t& s);
  void add_shape(statement_t& s, gx_type type, std::size_t least, std::size_t most,
                 std::string_view allowed);
  void line(statement_t& s) { add_shape(s, gx_type::line_2d, 2, 2, "color width style"); }
  void rect(statement_t& s) { add_shape(s, gx_type::rectangle_2d, 2, 2, "color style filled"); }
  void circle(statement_t& s) { add_shape(s, gx_type::circle_2d, 1, 1, "color style filled"); }
  void arc(statement_t& s) { add_shape(s, gx_type::arc3p_2d, 3, 3, "color"); }
  void polyline(statement_t& s) { add_shape(s, gx_type::polyline_2d, 2, 16, "color style"); }
  void text(statement_t& s);
  void pin(statement_t& s);
  void default_value(statement_t& s);
  void show(statement_t& s);
  void prop(statement_t& s);
  void pin_prop(statement_t& s);
  void page(statement_t& s);
  void add_part(statement_t& s, gxm_kind kind);
  void part(statement_t& s) { add_part(s, gxm_kind::part); }
  void port(statement_t& s) { add_part(s, gxm_kind::port); }
  void global(statement_t& s) { add_part(s, gxm_kind::global); }
  void add_net(statement_t& s, bool is_bus);
  void net(statement_t& s) { add_net(s, false); }
  void bus(statement_t& s) { add_net(s, true); }
  void wire(statement_t& s);
  void bit(statement_t& s);
  void label(statement_t& s);
  void frame(statement_t& s);

  // --- files described object by object
  void start_file(statement_t& s);
  void object(statement_t& s);

  void read(statement_t& s);

  static const keyword_t keywords[];
  gxm_input_t& input_;
  std::string_view file_;
  unsigned scope_ = at_top;
  int texts_ = 0;  // texts of the symbol or sheet so far
  gxm_open_objects_t open_objects_;
};

const keyword_t parser::keywords[] = {
    {"include", ~0U, &parser::include_file, "include FILE"},
    {"symbol", ~0U, &parser::start_symbol, "symbol NAME"},
    {"sheet", ~0U, &parser::start_sheet, "sheet NAME"},
    {"file", ~0U, &parser::start_file, "file DIRECTORY/BASE.gx_VERSION [FIELD=VALUE ...]"},
    {"line", ~unsigned{nowhere_drawn}, &parser::line, "line x,y x,y [color C] [width N] [style N]"},
    {"rect", ~unsigned{nowhere_drawn}, &parser::rect, "rect x,y x,y [filled] [color C] [style N]"},
    {"circle", ~unsigned{nowhere_drawn}, &parser::circle,
     "circle x,y RADIUS [filled] [color C] [style N]"},
    {"arc", ~unsigned{nowhere_drawn}, &parser::arc, "arc x,y x,y x,y [color C]"},
    {"polyline", ~unsigned{nowhere_drawn}, &parser::polyline,
     "polyline x,y x,y ... [color C] [style N]"},
    {"text", ~unsigned{nowhere_drawn}, &parser::text,
     "text TEXT at x,y [height H] [color C] [vertical]"},
    {"pin", in_symbol, &parser::pin, "pin NAME x,y [TYPE] [bits A:B] [at x,y] [NAME=VALUE ...]"},
    {"default", in_symbol, &parser::default_value, "default NAME=VALUE ..."},
    {"show", in_symbol, &parser::show, "show NAME x,y [height H] [color C]"},
    {"prop", ~unsigned{nowhere_drawn | in_sheet}, &parser::prop,
     "prop NAME=VALUE ... [at x,y] [height H] [color C] [vertical]"},
    {"pinprop", in_part, &parser::pin_prop, "pinprop NAME=VALUE ... [at x,y] [height H] [color C]"},
    {"page", anywhere_in_sheet, &parser::page,
     "page WIDTH,HEIGHT [step S] [gridoff] [notchecked] [errors N]"},
    {"part", anywhere_in_sheet, &parser::part,
     "part NAME SYMBOL x,y [rotate N] [mirror] [at x,y] [NAME=VALUE ...]"},
    {"port", anywhere_in_sheet, &parser::port,
     "port NAME SYMBOL x,y [bits A:B] [rotate N] [mirror] [at x,y] [NAME=VALUE ...]"},
    {"global", anywhere_in_sheet, &parser::global,
     "global NAME SYMBOL x,y [rotate N] [mirror] [at x,y] [NAME=VALUE ...]"},
    {"net", anywhere_in_sheet, &parser::net, "net [NAME] [at x,y] [NAME=VALUE ...]"},
    {"bus", anywhere_in_sheet, &parser::bus, "bus NAME A:B [at x,y] [NAME=VALUE ...]"},
    {"wire", in_net, &parser::wire,
     "wire STOP [-||] STOP ... [color C] [width N] [style N], a STOP is x,y or PART.PIN"},
    {"bit", in_net, &parser::bit, "bit N PART.PIN ..."},
    {"label", in_net, &parser::label, "label x,y [height H] [color C] [vertical]"},
    {"frame", anywhere_in_sheet, &parser::frame, "frame EXPRESSION"},
};

void parser::run(std::string_view text) {
  statement_t s{.words = {}, .source = {file_, 0}};
  while (!text.empty()) {
    const auto end = text.find('\n');
    ++s.source.line;
    s.next = 1;
    try {
      const auto words = gxm_split_words(text.substr(0, end));
      if (!words) throw complaint_t{"a quote is not closed"};
      s.words = *words;
      s.indent = std::min(text.find_first_not_of(" \t"), text.size());
      if (!s.words.empty()) read(s);
    } catch (const complaint_t& complaint) {
      gxm_complain(input_.messages, s.source, complaint.what);
    }
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
}

void parser::read(statement_t& s) {
  if (scope_ == in_file && s.indent > 0) return object(s);
  const auto keyword =
      std::find_if(std::begin(keywords), std::end(keywords),
                   [&](const keyword_t& k) { return gx_iden(k.word, s.words[0]); });
  if (keyword == std::end(keywords)) throw complaint_t{"unknown statement \"" + s.words[0] + "\""};
  if (!(keyword->scopes & scope_)) throw complaint_t{"\"" + s.words[0] + "\" cannot stand here"};
  try {
    (this->*keyword->handler)(s);
  } catch (complaint_t& complaint) {
    complaint.what += " (" + std::string(keyword->form) + ")";
    throw;
  }
}

// ------------------------------------------------------------------------ options

// `allowed` lists the words that the statement knows, "=" for NAME=VALUE.
options_t parser::options(statement_t& s, std::string_view allowed) {
  options_t o;
  const std::string padded = " " + std::string(allowed) + " ";
  const auto knows = [&](std::string_view option) {
    return padded.find(" " + std::string(option) + " ") != std::string::npos;
  };
  while (s.next < s.words.size()) {
    const std::string given = s.words[s.next++];
    if (auto assignment = gxm_assignment(given); assignment && knows("=")) {
      o.properties.push_back(*assignment);
      continue;
    }
    const auto option =
        std::find_if(std::begin(known_options), std::end(known_options),
                     [&](const option_t& known) { return known.word == given && knows(given); });
    if (option == std::end(known_options))
      throw complaint_t{"\"" + given + "\" is not understood here"};
    option->take(o, option->has_value ? word(s, "the value of " + given) : given);
  }
  return o;
}

gxm_property_t parser::property(const gxm_assignment_t& assignment, const options_t& look) {
  check_text(assignment.name, 63, "a property name");
  check_text(assignment.value, 95, "a property value");
  gxm_property_t property{.name = assignment.name, .value = assignment.value, .at = look.at};
  if (look.height) property.height = *look.height;
  if (look.color) property.color = *look.color;
  property.vertical = look.vertical;
  return property;
}

// ------------------------------------------------------------------------ files and blocks

void parser::include_file(statement_t& s) {
  const std::filesystem::path path = word(s, "the file name");
  gxm_parse_file(path.is_absolute() ? path : std::filesystem::path(file_).parent_path() / path,
                 input_);
  scope_ = at_top;
}

void parser::start_symbol(statement_t& s) {
  scope_ = at_top;  // where the statement is refused, what follows belongs to nothing
  gxm_symbol_t symbol{.name = name(s, "the symbol's name"), .source = s.source};
  options(s, "");
  input_.design.symbols.push_back(std::move(symbol));
  scope_ = in_symbol;
  texts_ = 0;
}

void parser::start_sheet(statement_t& s) {
  scope_ = at_top;
  gxm_sheet_t sheet{.name = name(s, "the sheet's name"), .source = s.source};
  options(s, "");
  input_.design.sheets.push_back(std::move(sheet));
  scope_ = in_sheet;
  texts_ = 0;
}

// Graphics of a sheet are in a frame; without one of their own in the frame DRAWING.
void parser::default_frame() {
  if (scope_ == in_frame) return;
  auto& frames = sheet().frames;
  const auto found = std::find_if(frames.begin(), frames.end(), [](const gxm_frame_t& frame) {
    return frame.expression == "DRAWING";
  });
  gxm_frame_t drawing{.expression = "DRAWING", .source = sheet().source};
  if (found != frames.end()) {
    drawing = std::move(*found);
    frames.erase(found);
  }
  frames.push_back(std::move(drawing));
  scope_ = in_frame;
}

std::vector<gxm_shape_t>& parser::shapes() {
  if (scope_ == in_symbol) return symbol().shapes;
  default_frame();
  return sheet().frames.back().shapes;
}

// ------------------------------------------------------------------------ graphics

void parser::add_shape(statement_t& s, gx_type type, std::size_t least, std::size_t most,
                       std::string_view allowed) {
  gxm_shape_t shape{.type = type};
  while (shape.points.size() < most && s.next < s.words.size() && gxm_point(s.words[s.next]))
    shape.points.push_back(point(s));
  if (shape.points.size() < least)
    throw complaint_t{"a point x,y " + (s.next < s.words.size()
                                            ? "expected, not \"" + s.words[s.next] + "\""
                                            : std::string("is missing"))};
  if (type == gx_type::circle_2d) {
    const auto& radius = word(s, "the radius");
    shape.radius = needed(gxm_length(radius), "a radius", radius);
    if (shape.radius < 1) throw complaint_t{"a radius above 0 expected"};
  }
  if (type == gx_type::arc3p_2d) {
    const auto &a = shape.points[0], &b = shape.points[1], &c = shape.points[2];
    if ((std::int64_t{b.x} - a.x) * (std::int64_t{c.y} - a.y) ==
        (std::int64_t{b.y} - a.y) * (std::int64_t{c.x} - a.x))
      throw complaint_t{"the three points of the arc are on one line"};
  }
  const auto o = options(s, allowed);
  shape.color = o.color.value_or(scope_ == in_symbol ? gxm_yellow : gxm_blue);
  shape.width = static_cast<std::uint8_t>(o.width.value_or(1));
  shape.style = static_cast<std::int16_t>(o.style.value_or(0));
  shape.filled = o.filled;
  shapes().push_back(std::move(shape));
}

void parser::text(statement_t& s) {
  const std::string value = name(s, "the text", 95);
  const auto look = options(s, "at height color vertical");
  if (!look.at) throw complaint_t{"at x,y is missing"};
  if (scope_ != in_symbol) default_frame();
  auto written = property({"TEXT" + std::to_string(++texts_), value}, look);
  (scope_ == in_symbol ? symbol().properties : sheet().frames.back().properties)
      .push_back(std::move(written));
}

// ------------------------------------------------------------------------ symbols

void parser::pin(statement_t& s) {
  gxm_pin_t pin{.name = name(s, "the pin's name"), .type = {}, .at = point(s)};
  if (s.next < s.words.size() && s.words[s.next] != "bits" && s.words[s.next] != "at" &&
      !gxm_assignment(s.words[s.next]))
    pin.type = name(s, "the pin's type");
  const auto o = options(s, "bits at =");
  pin.range = o.range;
  pin.name_at = o.at;
  for (const auto& assignment : o.properties)
    pin.properties.push_back(property(assignment, options_t{}));
  symbol().pins.push_back(std::move(pin));
}

void parser::default_value(statement_t& s) {
  const auto o = options(s, "=");
  if (o.properties.empty()) throw complaint_t{"NAME=VALUE is missing"};
  for (const auto& assignment : o.properties) symbol().defaults.push_back(property(assignment, o));
}

void parser::show(statement_t& s) {
  gxm_show_t show{.name = name(s, "the property's name"), .at = point(s)};
  const auto look = options(s, "height color");
  show.height = look.height.value_or(show.height);
  show.color = look.color.value_or(show.color);
  symbol().shows.push_back(std::move(show));
}

void parser::prop(statement_t& s) {
  const auto o = options(s, "at height color vertical =");
  if (o.properties.empty()) throw complaint_t{"NAME=VALUE is missing"};
  auto& list = scope_ == in_symbol ? symbol().properties
               : scope_ == in_part ? sheet().parts.back().properties
               : scope_ == in_net  ? sheet().nets.back().properties
                                   : sheet().frames.back().properties;
  for (const auto& assignment : o.properties) list.push_back(property(assignment, o));
}

// ------------------------------------------------------------------------ sheets

void parser::page(statement_t& s) {
  sheet().page = point(s);
  if (sheet().page.x < gxm_step || sheet().page.y < gxm_step)
    throw complaint_t{"a page of 1,1 or more expected"};
  const auto o = options(s, "step gridoff notchecked errors");
  sheet().grid_step = o.step.value_or(sheet().grid_step);
  if (sheet().grid_step < gxm_step) throw complaint_t{"a grid step of 1 or more expected"};
  sheet().grid_on = !o.grid_off;
  sheet().check_data_done = o.not_checked ? 1 : 0;
  sheet().num_errors = static_cast<std::int16_t>(o.errors.value_or(0));
}

void parser::add_part(statement_t& s, gxm_kind kind) {
  gxm_part_t part{.kind = kind,
                  .name = name(s, "the name"),
                  .symbol = name(s, "the symbol"),
                  .source = s.source,
                  .at = point(s)};
  const auto o =
      options(s, kind == gxm_kind::port ? "bits rotate mirror at =" : "rotate mirror at =");
  part.rotate = static_cast<std::uint8_t>(o.rotate.value_or(0));
  part.mirror = o.mirror;
  part.range = o.range;
  part.name_at = o.at;
  for (const auto& assignment : o.properties)
    part.properties.push_back(property(assignment, options_t{}));
  sheet().parts.push_back(std::move(part));
  scope_ = in_part;
}

void parser::pin_prop(statement_t& s) {
  const auto o = options(s, "at height color vertical =");
  if (o.properties.empty()) throw complaint_t{"NAME=VALUE is missing"};
  for (const auto& assignment : o.properties)
    sheet().parts.back().pin_properties.push_back(property(assignment, o));
}

void parser::add_net(statement_t& s, bool is_bus) {
  gxm_net_t net{.name = {}, .source = s.source};
  if (s.next < s.words.size()) net.name = name(s, "the net's name", 80);
  if (is_bus) {
    const auto& range = word(s, "the range A:B");
    net.range = needed(gxm_range(range), "a range A:B", range);
    if (net.range->end == net.range->start) throw complaint_t{"a bus of two bits or more expected"};
  }
  const auto o = options(s, "at height color vertical =");
  if (!net.name.empty()) net.properties.push_back(property({"NET", net.name}, o));
  for (const auto& assignment : o.properties)
    net.properties.push_back(property(assignment, options_t{}));
  sheet().nets.push_back(std::move(net));
  scope_ = in_net;
}

void parser::wire(statement_t& s) {
  gxm_wire_t wire{.source = s.source, .stops = {}};
  auto corner = gxm_stop_t::corner_t::straight;
  constexpr std::string_view options_known[] = {"color", "width", "style"};
  while (s.next < s.words.size() && std::find(std::begin(options_known), std::end(options_known),
                                              s.words[s.next]) == std::end(options_known)) {
    const std::string& given = s.words[s.next++];
    if (given == "-" || given == "|") {
      corner = given == "-" ? gxm_stop_t::corner_t::across_first : gxm_stop_t::corner_t::down_first;
      continue;
    }
    wire.stops.push_back(needed(gxm_stop(given), "a stop x,y or PART.PIN", given));
    wire.stops.back().corner = corner;
    corner = gxm_stop_t::corner_t::straight;
  }
  if (wire.stops.size() < 2) throw complaint_t{"two stops or more expected"};
  const auto o = options(s, "color width style");
  const bool is_bus = sheet().nets.back().range.has_value();
  wire.color = o.color.value_or(wire.color);
  wire.width = static_cast<std::uint8_t>(o.width.value_or(is_bus ? 3 : 1));
  wire.style = static_cast<std::int16_t>(o.style.value_or(0));
  sheet().nets.back().wires.push_back(std::move(wire));
}

void parser::bit(statement_t& s) {
  const auto& number = word(s, "the bit");
  const auto bit = needed(gxm_integer(number, 0, 9999), "a bit", number);
  do {
    const auto& given = word(s, "PART.PIN");
    const auto stop = gxm_stop(given);
    if (!stop || stop->part.empty()) throw complaint_t{"PART.PIN expected, not \"" + given + "\""};
    sheet().nets.back().bits.push_back(
        {s.source, stop->part, stop->pin, static_cast<std::int16_t>(bit)});
  } while (s.next < s.words.size());
}

// The net's name written once more: a text of its own, no second NET property.
void parser::label(statement_t& s) {
  options_t look;
  const auto at = point(s);
  look = options(s, "height color vertical");
  look.at = at;
  auto& net = sheet().nets.back();
  const auto labels =
      std::count_if(net.properties.begin(), net.properties.end(),
                    [](const gxm_property_t& p) { return p.name.starts_with("LABEL"); });
  net.properties.push_back(property({"LABEL" + std::to_string(labels + 1), net.name}, look));
}

void parser::frame(statement_t& s) {
  sheet().frames.push_back({.expression = name(s, "the frame expression", 95), .source = s.source});
  options(s, "");
  scope_ = in_frame;
}

// ------------------------------------------------------------------------ files

void parser::start_file(statement_t& s) {
  scope_ = at_top;
  gxm_object_file_t file{.source = s.source};
  if (auto wrong = gxm_read_file_line(std::span(s.words).subspan(1), file); !wrong.empty())
    throw complaint_t{std::move(wrong)};
  input_.design.files.push_back(std::move(file));
  open_objects_.clear();
  scope_ = in_file;
}

void parser::object(statement_t& s) {
  auto& file = input_.design.files.back();
  if (auto wrong = gxm_read_object_line(s.words, s.indent, s.source, file, open_objects_);
      !wrong.empty())
    throw complaint_t{std::move(wrong)};
}

}  // namespace

void gxm_parse_text(std::string_view text, std::string_view name, gxm_input_t& input) {
  parser(input, input.files.emplace_back(name)).run(text);
}

void gxm_parse_file(const std::filesystem::path& path, gxm_input_t& input) {
  const std::string name = path.lexically_normal().string();
  if (std::find(input.files.begin(), input.files.end(), name) != input.files.end()) return;
  std::string text;
  if (!x_read_regular(name, text, SIZE_MAX)) {
    gxm_complain(input.messages, {}, name + ": cannot be read: " + x_why_unread(errno));
    return;
  }
  gxm_parse_text(text, name, input);
}
