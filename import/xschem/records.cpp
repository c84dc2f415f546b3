// Words, numbers and braced texts of an xschem file.
#include "import/xschem/records.h"

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace {

constexpr double furthest = 200000;  // largest coordinate
constexpr int most_points = 100000;  // of a polygon

// The records that are one text.
constexpr std::pair<char, std::string gxi_xschem_file_t::*> texts[] = {
    {'v', &gxi_xschem_file_t::version}, {'K', &gxi_xschem_file_t::global},
    {'G', &gxi_xschem_file_t::vhdl},    {'V', &gxi_xschem_file_t::verilog},
    {'S', &gxi_xschem_file_t::spice},   {'E', &gxi_xschem_file_t::tedax},
    {'F', &gxi_xschem_file_t::spectre}};

class reader {
 public:
  reader(std::string_view text, std::string_view name, gxm_messages_t& messages)
      : text_(text), name_(name), messages_(messages) {}

  gxi_xschem_file_t run() {
    gxi_xschem_file_t file;
    read(file, false);
    return file;
  }

 private:
  [[noreturn]] void refuse(const std::string& what) const {
    throw std::runtime_error(std::string(name_) + ":" + std::to_string(line_) + ": " + what);
  }

  // --- characters and words
  bool at_end() const { return at_ >= text_.size(); }
  char peek() const { return at_end() ? '\0' : text_[at_]; }
  void step() { line_ += text_[at_++] == '\n'; }
  static bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
  void skip_blanks() {
    while (!at_end() && is_blank(peek())) step();
  }
  void skip_line() {
    while (!at_end() && peek() != '\n') step();
  }

  double number() {
    skip_blanks();
    const char* const first = text_.data() + at_;
    const char* const last = text_.data() + text_.size();
    double value = 0;
    const auto [end, error] = std::from_chars(first + (peek() == '+'), last, value);
    if (error != std::errc()) refuse("a number expected");
    at_ += static_cast<std::size_t>(end - first);
    if (!std::isfinite(value)) refuse("a number expected");
    return value;
  }

  double coordinate() {
    const double value = number();
    if (std::fabs(value) > furthest) refuse("a coordinate beyond 200000");
    return value;
  }

  gxi_xschem_point_t point() {
    const double x = coordinate();
    return {x, coordinate()};
  }

  int whole(int least, int most, const char* what) {
    const double value = number();
    if (value != std::floor(value) || value < least || value > most) refuse(what);
    return static_cast<int>(value);
  }

  int layer() { return whole(0, 1000, "a layer expected"); }
  int turns() {
    const int value = whole(-3, 7, "a rotation of 0 to 3 expected");
    return (value % 4 + 4) % 4;
  }
  bool flip() { return whole(0, 1, "a flip of 0 or 1 expected") != 0; }

  // A text in braces; a backslash takes the meaning from the next character.
  std::string braced() {
    skip_blanks();
    if (peek() != '{') refuse("\"{\" expected");
    const int opened = line_;
    step();
    std::string text;
    while (!at_end() && peek() != '}') {
      if (peek() == '\\') {
        step();
        if (at_end()) break;
      }
      text += peek();
      step();
    }
    if (at_end()) {
      line_ = opened;
      refuse("a \"{\" that is not closed");
    }
    step();
    return text;
  }

  // --- records
  void read(gxi_xschem_file_t& file, bool embedded) {
    const int opened = line_;
    while (true) {
      skip_blanks();
      if (at_end()) break;
      const char kind = peek();
      if (kind == ']') {
        if (!embedded) refuse("a \"]\" without \"[\"");
        step();
        return;
      }
      kind_line_ = line_;
      step();
      record(file, kind, embedded);
    }
    if (embedded) {
      line_ = opened;
      refuse("a \"[\" that is not closed");
    }
    // Older files have no K: there G holds the attributes of the symbol.
    if (file.global.empty() && !has_k_) file.global = file.vhdl;
  }

  void record(gxi_xschem_file_t& file, char kind, bool embedded) {
    for (const auto& [letter, text] : texts) {
      if (kind != letter) continue;
      if (kind == 'S') file.spice_line = kind_line_;
      has_k_ |= kind == 'K';
      file.*text = braced();
      return;
    }
    switch (kind) {
      case 'L':
      case 'B':
      case 'A':
      case 'P':
      case 'N':
        file.shapes.push_back(shape(kind));
        return;
      case 'T':
        file.texts.push_back(a_text());
        return;
      case 'C':
        file.components.push_back(component());
        return;
      case '[':
        if (embedded) refuse("a symbol within a symbol");
        embed(file);
        return;
      case '#':
        skip_line();
        return;
      default:
        gxm_complain(messages_, {name_, kind_line_},
                     std::string("a record of the unknown kind \"") + kind + "\" is left out");
        pass_over();
    }
  }

  // To the end of the line on which the record's last text closes.
  void pass_over() {
    while (!at_end() && peek() != '\n') {
      if (peek() == '{')
        braced();
      else
        step();
    }
  }

  gxi_xschem_shape_t shape(char kind) {
    gxi_xschem_shape_t shape{.kind = kind, .line = line_};
    if (kind != 'N') shape.layer = layer();
    switch (kind) {
      case 'A':
        shape.points.push_back(point());
        shape.radius = coordinate();
        shape.start = number();
        shape.sweep = number();
        break;
      case 'P':
        for (int left = whole(0, most_points, "a number of points expected"); left > 0; --left)
          shape.points.push_back(point());
        break;
      default:
        shape.points.push_back(point());
        shape.points.push_back(point());
    }
    shape.attributes = braced();
    return shape;
  }

  gxi_xschem_text_t a_text() {
    gxi_xschem_text_t text{.line = line_};
    text.text = braced();
    text.at = point();
    text.rotate = turns();
    text.flip = flip();
    text.width = number();
    text.height = number();
    text.attributes = braced();
    return text;
  }

  gxi_xschem_component_t component() {
    gxi_xschem_component_t component{.line = line_};
    component.symbol = braced();
    component.at = point();
    component.rotate = turns();
    component.flip = flip();
    component.attributes = braced();
    return component;
  }

  void embed(gxi_xschem_file_t& file) {
    if (file.components.empty()) refuse("a symbol that follows no component");
    auto symbol = std::make_shared<gxi_xschem_file_t>();
    const bool outer = std::exchange(has_k_, false);
    read(*symbol, true);
    if (symbol->global.empty() && !has_k_) symbol->global = symbol->vhdl;
    has_k_ = outer;
    file.components.back().embedded = std::move(symbol);
  }

  std::string_view text_, name_;
  gxm_messages_t& messages_;
  std::size_t at_ = 0;
  int line_ = 1, kind_line_ = 1;
  bool has_k_ = false;
};

}  // namespace

gxi_xschem_file_t gxi_xschem_read_records(std::string_view text, const gxm_source_t& name,
                                          gxm_messages_t& messages) {
  return reader(text, name.file, messages).run();
}
