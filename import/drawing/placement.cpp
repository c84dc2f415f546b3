// Turning, mirroring and aligning.
#include "import/drawing/placement.h"

#include <algorithm>

#include "gx/db/place/geometry.h"
#include "gx/text/at.h"
#include "gx/text/characters.h"
#include "gx/text/kept_text.h"

namespace {

constexpr std::size_t longest_line = 60;  // the most that is drawn of a text
constexpr gx_pointreal_t to_the_right{1, 0}, upright{0, -1};

gx_pointreal_t plus(gx_pointreal_t a, gx_pointreal_t b) { return {a.x + b.x, a.y + b.y}; }
gx_pointreal_t minus(gx_pointreal_t a, gx_pointreal_t b) { return {a.x - b.x, a.y - b.y}; }

gx_pointreal_t turned(const gxi_instance_t& instance, gx_pointreal_t p) {
  return gx_turn(gx_pointreal_t{instance.mirror ? -p.x : p.x, p.y}, instance.rotate, false);
}

gxi_align other_end(gxi_align align) {
  return align == gxi_align::start ? gxi_align::end
         : align == gxi_align::end ? gxi_align::start
                                   : gxi_align::middle;
}

// The part of `size` that lies before the point that the alignment names.
std::int32_t before(gxi_align align, std::int32_t size) {
  return align == gxi_align::start ? 0 : align == gxi_align::middle ? size / 2 : size;
}

std::int32_t within_furthest(std::int64_t size) {
  return static_cast<std::int32_t>(std::min<std::int64_t>(size, gxm_furthest));
}

std::int32_t width_of(std::size_t length, std::int32_t height) {
  const auto whole = static_cast<std::int64_t>(length) * height;
  return within_furthest(whole + whole / 5);
}

// As the file keeps it: with its signs where they have room.
std::string kept_line(std::u32string_view line) {
  std::string text;
  for (const char32_t code : line) gx_append_utf8(text, code);
  std::string kept = gx_kept_text(text);
  return kept.size() > gxi_longest_value ? gx_ascii(text).substr(0, gxi_longest_value) : kept;
}

// Turns a look that is upside down. `along` is where its line runs to (1, 0) unturned, `upwards`
// where its letters point up.
void make_readable(gxi_look_t& look, gx_pointreal_t along, gx_pointreal_t upwards) {
  const bool across = along.y == 0;
  look.rotate = across ? 0 : 1;
  if (across ? along.x < 0 : along.y > 0) look.across = other_end(look.across);
  if (across ? upwards.y > 0 : upwards.x > 0) look.up = other_end(look.up);
}

struct placed_line_t {
  std::u32string_view text{};
  std::size_t first = 0;  // letter, of the whole text
  gx_pointreal_t at{};    // the left end of its baseline
};

std::vector<placed_line_t> cut_at_newlines(std::u32string_view shown) {
  std::vector<placed_line_t> lines;
  for (std::size_t first = 0, end = 0; end < shown.size(); first = end + 1) {
    end = std::min(shown.find(U'\n', first), shown.size());
    auto text = shown.substr(first, end - first);
    while (text.ends_with(U' ')) text.remove_suffix(1);
    lines.push_back({text, first});
  }
  return lines;
}

// Makes the look readable.
std::vector<placed_line_t> placed_lines(std::u32string_view shown, gxi_look_t& look) {
  make_readable(look, gx_turn(to_the_right, look.rotate % 4, false),
                gx_turn(upright, look.rotate % 4, false));
  auto lines = cut_at_newlines(shown);
  std::size_t longest = 0;
  for (const auto& line : lines) longest = std::max(longest, line.text.size());
  const std::int64_t height = look.height;
  const std::int64_t step = look.line_step > 0 ? look.line_step : height + height * 3 / 5;
  auto below = static_cast<std::int64_t>(lines.size());
  const auto tall = within_furthest(height + (below - 1) * step);
  for (auto& line : lines) {
    const auto wide = width_of(look.flush ? longest : line.text.size(), look.height);
    const gx_pointreal_t offset{-before(look.across, wide),
                                before(look.up, tall) - within_furthest(--below * step)};
    line.at = plus(look.at, gx_turn(offset, look.rotate, false));
  }
  return lines;
}

gx_pointreal_t along(const gxi_look_t& look, gx_pointreal_t from, std::size_t letters,
                     std::int32_t down) {
  const gx_pointreal_t offset{width_of(letters, look.height), down};
  return plus(from, gx_turn(offset, look.rotate, false));
}

}  // namespace

gxi_turn_t gxi_turn_of(const gxi_instance_t& instance) {
  const int turns = instance.mirror ? 6 - instance.rotate % 4 : instance.rotate;
  return {static_cast<std::uint8_t>(turns % 4), instance.mirror};
}

gx_pointreal_t gxi_on_sheet(const gxi_instance_t& instance, gx_pointreal_t of_symbol) {
  return plus(instance.at, turned(instance, of_symbol));
}

gxi_look_t gxi_on_sheet(const gxi_instance_t& instance, gxi_look_t look) {
  look.at = gxi_on_sheet(instance, look.at);
  const auto along = turned(instance, gx_turn(to_the_right, look.rotate % 4, false));
  const auto upwards = turned(instance, gx_turn(upright, look.rotate % 4, false));
  make_readable(look, along, upwards);
  return look;
}

std::vector<gxi_line_t> gxi_lines(std::string_view kept, const gxi_look_t& unturned) {
  gxi_look_t look = unturned;
  std::vector<gxi_line_t> pieces;
  const std::u32string shown = gx_characters(gx_shown_text(kept));
  for (const auto& line : placed_lines(shown, look))
    for (std::size_t from = 0, to = 0; from < line.text.size(); from = to) {
      to = std::min(from + longest_line, line.text.size());
      if (const auto blank = line.text.rfind(U' ', to); to < line.text.size() && blank > from)
        to = std::min(blank, to);
      pieces.push_back({kept_line(line.text.substr(from, to - from)), along(look, line.at, from, 0),
                        look.rotate});
    }
  return pieces;
}

void gxi_draw_bars(const gxi_bars_t& bars, std::string_view text, const gxi_look_t& unturned,
                   std::vector<gxm_shape_t>& shapes) {
  if (bars.empty()) return;
  gxi_look_t look = unturned;
  std::vector<int> change(text.size() + 1);  // of the number of bars, at each byte
  for (const auto& [from, to] : bars) ++gx_at(change, from), --gx_at(change, to);
  std::vector<bool> barred;  // by letter, and one more
  int depth = 0;
  for (auto rest = text; !rest.empty(); barred.push_back(depth > 0)) {
    depth += gx_at(change, text.size() - rest.size());
    gx_take_character(rest);
  }
  const std::int32_t above = -look.height - look.height / 3;
  const std::u32string shown = gx_characters(text);
  for (const auto& line : placed_lines(shown, look))
    for (std::size_t from = 0, to = 0; from < line.text.size(); from = std::max(to, from + 1)) {
      for (to = from; to < line.text.size() && barred[line.first + to];) ++to;
      if (from < to)
        shapes.push_back(
            {.type = gx_type::line_2d,
             .points = {along(look, line.at, from, above), along(look, line.at, to, above)},
             .color = look.color});
    }
}

void gxi_show(std::string_view text, const gxi_look_t& look,
              std::vector<gxi_property_t>& properties) {
  const std::string name = "SHOWN";
  auto count = std::ranges::count_if(
      properties, [&](const auto& property) { return property.name.starts_with(name); });
  for (const auto& line : gxi_lines(gx_kept_text(text), look))
    properties.push_back(
        {name + std::to_string(++count), gx_shown_text(line.text), gxi_look_of(line, look)});
}

gxi_look_t gxi_look_of(const gxi_line_t& line, const gxi_look_t& look) {
  return {.at = line.at, .height = look.height, .rotate = line.rotate, .color = look.color};
}

gxi_stored_t gxi_below(const gxi_instance_t& instance, const gxi_line_t& line,
                       std::int32_t height) {
  const auto turn = gxi_turn_of(instance);
  // Below a mirrored instance the turns 1 and 3 change places.
  const int seen = turn.fliph && line.rotate % 2 == 1 ? 4 - line.rotate : line.rotate;
  gxi_stored_t stored;
  stored.rotate = static_cast<std::uint8_t>((seen + 4 - turn.rotate) % 4);
  gx_object_property_rec_t property;
  property.gene.object_type = gx_type::property_2d;
  property.rotate = stored.rotate;
  property.height = height;
  property.nvalue.len = static_cast<std::int32_t>(gx_shown_length(line.text));
  // A text that is turned over is drawn from the other end of its box (gx/db/place/geometry.h).
  const auto box = gx_turn(gx_property_compute_newbounds(property), turn.rotate, turn.fliph);
  gx_pointreal_t drawn_from{};
  if (turn.fliph && seen == 0) drawn_from.y = box.ymin + box.ymax;
  if (turn.fliph && seen != 0) drawn_from.x = box.xmin + box.xmax;
  auto offset = minus(minus(line.at, instance.at), drawn_from);
  if (turn.fliph) offset.y = -offset.y;
  stored.at = gx_turn(offset, (4 - turn.rotate) % 4, false);
  return stored;
}

gxi_row_below_t::gxi_row_below_t(const gxi_symbol_t& symbol) {
  for (const auto& shape : symbol.shapes)
    for (const auto& point : shape.points) keep_below(point);
  for (const auto& pin : symbol.pins) keep_below(pin.at);
}

void gxi_row_below_t::keep_below(gx_pointreal_t place) { lowest_.y = std::max(lowest_.y, place.y); }

gx_pointreal_t gxi_row_below_t::next() {
  return {taken_++ * gxm_step, (lowest_.y / gxm_step + 1) * gxm_step};
}

void gxi_draw_apart(const gxi_symbol_t& symbol, const gxi_instance_t& instance,
                    gxi_sheet_t& sheet) {
  for (auto shape : symbol.shapes) {
    for (auto& point : shape.points) point = gxi_on_sheet(instance, point);
    sheet.shapes.push_back(std::move(shape));
  }
  for (const auto& text : symbol.texts)
    sheet.texts.push_back({text.value, gxi_on_sheet(instance, text.look)});
  for (const auto& property : symbol.properties)
    if (property.look)
      sheet.texts.push_back({property.value, gxi_on_sheet(instance, *property.look)});
  for (const auto& property : instance.properties)
    if (property.look) sheet.texts.push_back({property.value, *property.look});
}

void gxi_draw_missing(const std::string& name, gxi_symbol_t& symbol) {
  constexpr std::int32_t height = 4 * gxm_step, least_width = 8 * gxm_step;
  const gxi_look_t look{.up = gxi_align::middle, .color = gxm_red};
  std::int32_t width = width_of(gx_characters(name).size(), look.height) + gxm_step;
  width = std::max(least_width, (width / gxm_step + 1) * gxm_step);
  symbol.shapes.push_back(
      {.type = gx_type::rectangle_2d, .points = {{0, -height}, {width, 0}}, .color = gxm_red});
  auto inside = look;
  inside.at = {gxm_step / 2, -height / 2};
  symbol.texts.push_back({name, inside});
}
