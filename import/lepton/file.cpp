// Records, and what follows them: texts, paths, attributes, embedded symbols.
#include "import/lepton/file.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "import/lepton/lines.h"
#include "import/lepton/path.h"

namespace {

void shift(gxi_lepton_file_t& file, gxi_lepton_point_t by) {
  const auto move = [&](gxi_lepton_point_t& p) { p = {p.x + by.x, p.y + by.y}; };
  const auto move_texts = [&](gxi_lepton_texts_t& texts) {
    for (auto& text : texts) move(text.at);
  };
  for (auto& shape : file.shapes) {
    std::for_each(shape.points.begin(), shape.points.end(), move);
    for (auto& step : shape.path) std::for_each(step.points.begin(), step.points.end(), move);
  }
  move_texts(file.texts);
  move_texts(file.attached);
  for (auto& pin : file.pins) {
    move(pin.tip);
    move(pin.root);
    move_texts(pin.attributes);
  }
}

gxi_lepton_point_t centre_of(const gxi_lepton_file_t& file) {
  std::int64_t x = 0, y = 0, count = 0;
  const auto add = [&](gxi_lepton_point_t p) {
    x += p.x;
    y += p.y;
    ++count;
  };
  for (const auto& shape : file.shapes)
    std::for_each(shape.points.begin(), shape.points.end(), add);
  for (const auto& pin : file.pins) add(pin.tip), add(pin.root);
  count = std::max<std::int64_t>(count, 1);
  return {static_cast<std::int32_t>(x / count), static_cast<std::int32_t>(y / count)};
}

class reader : private gxi_lepton_lines_t {
 public:
  using gxi_lepton_lines_t::gxi_lepton_lines_t;

  gxi_lepton_file_t run() {
    gxi_lepton_file_t file;
    bool has_version = false;
    while (next()) {
      if (line().empty()) continue;
      if (!has_version && line().front() != 'v') refuse("a version line expected");
      has_version = true;
      record(file, false);
    }
    if (!has_version) refuse("a version line expected");
    settle_old_pins();
    return file;
  }

 private:
  // The record that a "{" belongs to.
  struct owner_t {
    gxi_lepton_texts_t* texts = nullptr;
    gxi_lepton_component_t* component = nullptr;
  };

  // --- records
  void record(gxi_lepton_file_t& file, bool embedded) {
    switch (line().front()) {
      case '#':  // a comment
      case 'F':  // a font, in old files
        return;
      case 'v':
        take_numbers(1, 2);
        return;
      case 'T':
        file.texts.push_back(a_text());
        owner_ = {.texts = &file.attached};
        return;
      case 'N':
        take_numbers(4, 5);
        file.nets.push_back(
            {.line = {number_of_line()}, .color = number(4, 4), .from = point(0), .to = point(2)});
        owner_ = {.texts = &file.nets.back().attributes};
        return;
      case 'P':
        file.pins.push_back(pin());
        if (count() < 7) old_pins_.emplace_back(&file, file.pins.size() - 1);
        owner_ = {.texts = &file.pins.back().attributes};
        return;
      case 'C':
        if (embedded) refuse("a component within a symbol");
        component(file);
        return;
      case '{':
        attributes();
        return;
      case '[':
        if (embedded) refuse("a symbol within a symbol");
        embed();
        return;
      default:
        file.shapes.push_back(shape());
        owner_ = {.texts = &file.attached};
    }
  }

  gxi_lepton_text_t a_text() {
    take_numbers(5, 9);
    gxi_lepton_text_t text{.line = {number_of_line()}, .at = point(0)};
    text.color = number(2);
    text.size = std::max(number(3), 1);
    text.visible = number(4) != 0;
    const int show = number(5);
    if (show < 0 || show > 2) refuse("0 (name and value), 1 (value) or 2 (name) expected");
    text.show = static_cast<gxi_lepton_text_t::show_t>(show);
    text.rotate = quarter_turns(6);
    text.alignment = number(7);
    if (text.alignment < 0 || text.alignment > 8) refuse("an alignment of 0 to 8 expected");
    text.text = following(number(8, 1), "text");
    return text;
  }

  gxi_lepton_pin_t pin() {
    take_numbers(4, 7);
    gxi_lepton_pin_t pin{.line = {number_of_line()}, .color = number(4, 1), .bus = number(5) != 0};
    const bool second = number(6) != 0;
    pin.tip = point(second ? 2 : 0);
    pin.root = point(second ? 0 : 2);
    return pin;
  }

  void component(gxi_lepton_file_t& file) {
    take_numbers(5, 5, true);
    gxi_lepton_component_t component{.line = {number_of_line()}, .at = point(0)};
    component.rotate = quarter_turns(3);
    component.mirror = number(4) != 0;
    component.symbol = rest();
    while (!component.symbol.empty() && component.symbol.back() == ' ') component.symbol.pop_back();
    if (component.symbol.empty()) refuse("the name of a symbol expected");
    constexpr std::string_view mark = "EMBEDDED";
    if (component.symbol.rfind(mark, 0) == 0) {
      component.symbol.erase(0, mark.size());
      component.embedded = std::make_shared<gxi_lepton_file_t>();
    }
    file.components.push_back(std::move(component));
    owner_ = {.texts = &file.components.back().attributes, .component = &file.components.back()};
  }

  void attributes() {
    const int opened = number_of_line();
    if (owner_.texts == nullptr) refuse("a \"{\" that follows no object");
    while (next()) {
      if (line().empty()) continue;
      if (line().front() == '}') return;
      if (line().front() != 'T') refuse("a text or \"}\" expected");
      owner_.texts->push_back(a_text());
    }
    refuse(opened, "a \"{\" that is not closed");
  }

  void embed() {
    const int opened = number_of_line();
    auto* const component = owner_.component;
    if (component == nullptr) refuse("a \"[\" that follows no component");
    auto outer = owner_;
    outer.component = nullptr;  // it has one symbol
    component->embedded = std::make_shared<gxi_lepton_file_t>();
    owner_ = {};
    while (next()) {
      if (line().empty()) continue;
      if (line().front() == ']') {
        // It stands as it is seen on the page.
        shift(*component->embedded, {-component->at.x, -component->at.y});
        component->rotate = 0;
        component->mirror = false;
        owner_ = outer;
        return;
      }
      record(*component->embedded, true);
    }
    refuse(opened, "a \"[\" that is not closed");
  }

  // The first files do not say which end of a pin is joined: it is the one further out.
  void settle_old_pins() {
    const gxi_lepton_file_t* of = nullptr;
    gxi_lepton_point_t centre;
    for (const auto& [file, index] : old_pins_) {
      if (std::exchange(of, file) != file) centre = centre_of(*file);
      auto& pin = file->pins[index];
      const auto away = [&](gxi_lepton_point_t p) {
        return std::abs(p.x - centre.x) + std::abs(p.y - centre.y);
      };
      if (away(pin.root) > away(pin.tip)) std::swap(pin.tip, pin.root);
    }
  }

  // --- shapes
  gxi_lepton_shape_t shape() {
    gxi_lepton_shape_t shape{.kind = line().front(), .line = {number_of_line()}};
    switch (shape.kind) {
      case 'L':
        take_numbers(4, 10);
        shape.points = {point(0), point(2)};
        take_style(shape, 4, 0);
        break;
      case 'B':
        take_numbers(4, 16);
        shape.points = {point(0), {length(0) + length(2), length(1) + length(3)}};
        take_style(shape, 4, 10);
        break;
      case 'V':
        take_numbers(3, 15);
        shape.points = {point(0)};
        shape.radius = length(2);
        take_style(shape, 3, 9);
        break;
      case 'A':
        take_numbers(5, 11);
        shape.points = {point(0)};
        shape.radius = length(2);
        shape.start = number(3);
        shape.sweep = number(4);
        take_style(shape, 5, 0);
        break;
      case 'U':
        take_numbers(4, 6);
        shape.points = {point(0), point(2)};
        shape.color = number(4, 10);
        break;
      case 'H':
        take_numbers(13, 13);
        take_style(shape, 0, 6);
        take_path(shape);
        break;
      case 'G':
        picture(shape);
        break;
      default:
        refuse(std::string("a record of the unknown kind \"") + shape.kind + "\"");
    }
    return shape;
  }

  // Colour, width, ends and dashes from the number `first` on; whether filled at `fill`.
  void take_style(gxi_lepton_shape_t& shape, std::size_t first, std::size_t fill) const {
    shape.color = number(first, shape.color);
    shape.width = std::max(number(first + 1), 0);
    shape.dashed = number(first + 3) > 0;
    shape.filled = fill > 0 && number(fill) == 1;
  }

  void take_path(gxi_lepton_shape_t& shape) {
    const int first = number_of_line();
    std::string why;
    if (!gxi_lepton_path(following(number(12), "path"), gxi_lepton_furthest, shape.path, why))
      refuse(first, "a path with " + why);
  }

  void picture(gxi_lepton_shape_t& shape) {
    take_numbers(6, 7);
    shape.points = {point(0), {length(0) + length(2), length(1) + length(3)}};
    const bool embedded = number(6) != 0;
    const int first = number_of_line();
    following(1, "picture");
    if (!embedded) return;
    do {
      if (!next()) refuse(first, "lines of the picture are missing");
    } while (line() != ".");
  }

  owner_t owner_{};
  std::vector<std::pair<gxi_lepton_file_t*, std::size_t>> old_pins_;
};

}  // namespace

gxi_lepton_file_t gxi_lepton_read_file(std::string_view text, std::string_view name) {
  return reader(text, name).run();
}
