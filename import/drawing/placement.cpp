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

std::int32_t width_of(std::size_t length, std::int32_t height) {
  const std::int32_t whole = static_cast<std::int32_t>(length) * height;
  return whole + whole / 5;
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
  make_readable(look, gx_turn(to_the_right, look.rotate % 4, false),
                gx_turn(upright, look.rotate % 4, false));
  std::vector<gxi_line_t> lines;
  const std::u32string shown = gx_characters(gx_shown_text(kept));
  std::vector<std::u32string_view> parts;
  for (std::u32string_view text = shown; !text.empty();) {
    const auto end = std::min(text.find(U'\n'), text.size());
    auto line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    while (!line.empty() && line.back() == U' ') line.remove_suffix(1);
    while (line.size() > longest_line) {
      auto cut = line.rfind(U' ', longest_line);
      if (cut == line.npos || cut == 0) cut = longest_line;
      parts.push_back(line.substr(0, cut));
      line.remove_prefix(cut);
    }
    parts.push_back(line);
  }
  const std::int32_t step = look.line_step > 0 ? look.line_step : look.height + look.height * 3 / 5;
  const auto last = static_cast<std::int32_t>(parts.size()) - 1;
  const std::int32_t tall = look.height + last * step;
  for (std::int32_t i = 0; i <= last; ++i) {
    const auto part = gx_at(parts, i);
    if (part.empty()) continue;
    const std::int32_t left = -before(look.across, width_of(part.size(), look.height));
    const std::int32_t down = before(look.up, tall) - (last - i) * step;
    const gx_pointreal_t offset{left, down};
    lines.push_back(
        {kept_line(part), plus(look.at, gx_turn(offset, look.rotate, false)), look.rotate});
  }
  return lines;
}

gx_pointreal_t gxi_place_in_line(const gxi_look_t& look, std::size_t length, std::size_t letter,
                                 std::int32_t down) {
  const std::int32_t left = -before(look.across, width_of(length, look.height));
  const gx_pointreal_t offset{left + width_of(letter, look.height), down};
  return plus(look.at, gx_turn(offset, look.rotate, false));
}

void gxi_draw_bars(const gxi_bars_t& bars, std::size_t length, const gxi_look_t& look,
                   std::vector<gxm_shape_t>& shapes) {
  const std::int32_t capitals = look.height - before(look.up, look.height);
  const std::int32_t above = -capitals - look.height / 3;
  for (const auto& [from, to] : bars)
    shapes.push_back({.type = gx_type::line_2d,
                      .points = {gxi_place_in_line(look, length, from, above),
                                 gxi_place_in_line(look, length, to, above)},
                      .color = look.color});
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
  std::int32_t width = 0;
  for (const auto& line : gxi_lines(name, look))
    width = std::max(width, width_of(line.text.size(), look.height) + gxm_step);
  width = std::max(least_width, (width / gxm_step + 1) * gxm_step);
  symbol.shapes.push_back(
      {.type = gx_type::rectangle_2d, .points = {{0, -height}, {width, 0}}, .color = gxm_red});
  auto inside = look;
  inside.at = {gxm_step / 2, -height / 2};
  symbol.texts.push_back({name, inside});
}
