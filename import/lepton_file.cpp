// Lines, their numbers, and what follows them: texts, paths, attributes, embedded symbols.
#include "import/lepton_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "import/lepton_path.h"

namespace {

constexpr int furthest = 400000;      // largest coordinate
constexpr int most_lines = 100000;    // of a text or a path
constexpr int longest_value = 65536;  // of a number that is no coordinate

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

class reader {
 public:
  reader(std::string_view text, std::string_view name) : text_(text), name_(name) {}

  gxi_lepton_file_t run() {
    gxi_lepton_file_t file;
    bool has_version = false;
    while (next()) {
      if (line_text_.empty()) continue;
      if (!has_version && line_text_.front() != 'v') refuse("a version line expected");
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

  [[noreturn]] void refuse(const std::string& what) const { refuse(line_, what); }
  [[noreturn]] void refuse(int line, const std::string& what) const {
    throw std::runtime_error(std::string(name_) + ":" + std::to_string(std::max(line, 1)) + ": " +
                             what);
  }

  // --- lines and numbers
  bool next() {
    if (at_ >= text_.size()) return false;
    const auto end = std::min(text_.find('\n', at_), text_.size());
    line_text_ = text_.substr(at_, end - at_);
    if (!line_text_.empty() && line_text_.back() == '\r') line_text_.remove_suffix(1);
    at_ = end + 1;
    ++line_;
    return true;
  }

  // The numbers behind the letter of the line, `least` to `most`; what follows them is a name where
  // one may stand.
  void take_numbers(std::size_t least, std::size_t most, bool has_name = false) {
    numbers_.fill(0);
    count_ = 0;
    rest_ = line_text_.substr(1);
    while (count_ < most) {
      rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size()));
      int value = 0;
      const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
      const auto length = static_cast<std::size_t>(end - rest_.data());
      const bool is_word = length == rest_.size() || rest_[length] == ' ' || rest_[length] == '\t';
      if (error != std::errc() || !is_word) break;
      numbers_[count_++] = value;
      rest_.remove_prefix(length);
    }
    if (count_ < least) refuse(std::to_string(least) + " numbers expected");
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size()));
    if (!rest_.empty() && !has_name) refuse("not more than " + std::to_string(most) + " numbers");
  }

  int number(std::size_t i, int otherwise = 0) const {
    if (i >= count_) return otherwise;
    return std::clamp(numbers_[i], -longest_value, longest_value);
  }
  std::int32_t length(std::size_t i) const {
    if (numbers_[i] < -furthest || numbers_[i] > furthest)
      refuse("a coordinate beyond " + std::to_string(furthest));
    return numbers_[i];
  }
  gxi_lepton_point_t point(std::size_t i) const { return {length(i), length(i + 1)}; }
  int quarter_turns(std::size_t i) const {
    const int degrees = number(i);
    if (degrees % 90 != 0) refuse("an angle of 0, 90, 180 or 270 expected");
    return ((degrees / 90) % 4 + 4) % 4;
  }

  // The lines that follow a record.
  std::string following(int count, const char* of) {
    if (count < 0 || count > most_lines) refuse("a number of lines expected");
    const int first = line_;
    std::string all;
    for (int i = 0; i < count; ++i) {
      if (!next()) refuse(first, std::string("lines of the ") + of + " are missing");
      if (i > 0) all += '\n';
      all += line_text_;
    }
    return all;
  }

  // --- records
  void record(gxi_lepton_file_t& file, bool embedded) {
    switch (line_text_.front()) {
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
            {.line = {line_}, .color = number(4, 4), .from = point(0), .to = point(2)});
        owner_ = {.texts = &file.nets.back().attributes};
        return;
      case 'P':
        file.pins.push_back(pin());
        if (count_ < 7) old_pins_.emplace_back(&file, file.pins.size() - 1);
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
    gxi_lepton_text_t text{.line = {line_}, .at = point(0)};
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
    gxi_lepton_pin_t pin{.line = {line_}, .color = number(4, 1), .bus = number(5) != 0};
    const bool second = number(6) != 0;
    pin.tip = point(second ? 2 : 0);
    pin.root = point(second ? 0 : 2);
    return pin;
  }

  void component(gxi_lepton_file_t& file) {
    take_numbers(5, 5, true);
    gxi_lepton_component_t component{.line = {line_}, .at = point(0)};
    component.rotate = quarter_turns(3);
    component.mirror = number(4) != 0;
    component.symbol = rest_;
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
    const int opened = line_;
    if (owner_.texts == nullptr) refuse("a \"{\" that follows no object");
    while (next()) {
      if (line_text_.empty()) continue;
      if (line_text_.front() == '}') return;
      if (line_text_.front() != 'T') refuse("a text or \"}\" expected");
      owner_.texts->push_back(a_text());
    }
    refuse(opened, "a \"{\" that is not closed");
  }

  void embed() {
    const int opened = line_;
    auto* const component = owner_.component;
    if (component == nullptr) refuse("a \"[\" that follows no component");
    auto outer = owner_;
    outer.component = nullptr;  // it has one symbol
    component->embedded = std::make_shared<gxi_lepton_file_t>();
    owner_ = {};
    while (next()) {
      if (line_text_.empty()) continue;
      if (line_text_.front() == ']') {
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
    for (const auto& [file, index] : old_pins_) {
      std::int64_t x = 0, y = 0, count = 0;
      const auto add = [&](gxi_lepton_point_t p) {
        x += p.x;
        y += p.y;
        ++count;
      };
      for (const auto& shape : file->shapes)
        std::for_each(shape.points.begin(), shape.points.end(), add);
      for (const auto& pin : file->pins) add(pin.tip), add(pin.root);
      auto& pin = file->pins[index];
      const auto away = [&](gxi_lepton_point_t p) {
        return std::abs(p.x - x / count) + std::abs(p.y - y / count);
      };
      if (away(pin.root) > away(pin.tip)) std::swap(pin.tip, pin.root);
    }
  }

  // --- shapes
  gxi_lepton_shape_t shape() {
    gxi_lepton_shape_t shape{.kind = line_text_.front(), .line = {line_}};
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
    const int first = line_;
    std::string why;
    if (!gxi_lepton_path(following(number(12), "path"), furthest, shape.path, why))
      refuse(first, "a path with " + why);
  }

  void picture(gxi_lepton_shape_t& shape) {
    take_numbers(6, 7);
    shape.points = {point(0), {length(0) + length(2), length(1) + length(3)}};
    const bool embedded = number(6) != 0;
    const int first = line_;
    following(1, "picture");
    if (!embedded) return;
    do {
      if (!next()) refuse(first, "lines of the picture are missing");
    } while (line_text_ != ".");
  }

  std::string_view text_, name_, line_text_, rest_;
  std::size_t at_ = 0;
  int line_ = 0;
  std::array<int, 16> numbers_{};
  std::size_t count_ = 0;
  owner_t owner_{};
  std::vector<std::pair<gxi_lepton_file_t*, std::size_t>> old_pins_;
};

}  // namespace

std::string_view gxi_lepton_text_t::name() const {
  const auto equals = text.find('=');
  if (equals == std::string::npos || equals == 0) return {};
  const std::string_view before = std::string_view(text).substr(0, equals);
  if (before.find('\n') != std::string_view::npos || before.back() == ' ') return {};
  if (equals + 1 < text.size() && text[equals + 1] == ' ') return {};
  return before;
}

std::string_view gxi_lepton_text_t::value() const {
  const auto before = name();
  return before.empty() ? std::string_view() : std::string_view(text).substr(before.size() + 1);
}

gxi_lepton_file_t gxi_read_lepton_file(std::string_view text, std::string_view name) {
  return reader(text, name).run();
}

std::vector<std::string_view> gxi_lepton_values(const gxi_lepton_texts_t& texts,
                                                std::string_view name) {
  std::vector<std::string_view> values;
  for (const auto& text : texts)
    if (text.name() == name) values.push_back(text.value());
  return values;
}

std::string_view gxi_lepton_value(const gxi_lepton_texts_t& texts, std::string_view name) {
  const auto found = std::find_if(texts.begin(), texts.end(),
                                  [&](const auto& text) { return text.name() == name; });
  return found == texts.end() ? std::string_view() : found->value();
}
