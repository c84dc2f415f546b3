// From a format to words, from words to nodes by what a simulator takes for nodes.
#include "import/xschem/format.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "import/drawing/netlist_text.h"

namespace {

// A piece of a line: pins, or a word of text.
struct piece_t {
  std::vector<int> pins{};
  std::string text{};
  std::string whole{};      // the text with the pins that it mentions
  std::string attribute{};  // the text is the value of this one alone
  std::vector<std::string> within{};
  bool is_pins() const { return !pins.empty(); }
};
using line_t = std::vector<piece_t>;

class splitter {
 public:
  splitter(std::string_view format, const gxi_xschem_symbol_t& symbol,
           const std::function<std::string(std::string_view)>& value)
      : text_(format), symbol_(symbol), value_(value) {}

  std::vector<line_t> run() {
    lines_.emplace_back();
    while (at_ < text_.size()) step();
    end_word();
    std::erase_if(lines_, [](const line_t& line) { return line.empty(); });
    return std::move(lines_);
  }

 private:
  void step() {
    const char c = text_[at_];
    if (c == '\n') {
      end_word();
      ++at_;
      begin_line();
    } else if (gxi_xschem_is_blank(c) && !grouped()) {
      end_word();
      ++at_;
    } else if (c == '\\') {
      ++at_;
      // Before the end of a line it makes the next one part of this.
      if (at_ < text_.size() && text_[at_] == '\n') ++at_;
      if (at_ < text_.size() && text_[at_] == '@') add(text_[at_++]);
    } else if (c == '@') {
      reference();
    } else {
      add(c);
      ++at_;
    }
  }

  void add(char c) {
    if (c == '\'' || c == '"') quote_ = quote_ == c ? '\0' : quote_ == '\0' ? c : quote_;
    if (quote_ == '\0') braces_ = std::max(0, braces_ + (c == '{') - (c == '}'));
    word_.text += c;
    word_.whole += c;
    word_.attribute.clear();
    begun_ = true;
  }

  // Blanks do not part words within quotes and braces.
  bool grouped() const { return quote_ != '\0' || braces_ > 0; }

  void begin_line() {
    const auto next = text_.find_first_not_of(" \t\r\n", at_);
    if (next != std::string_view::npos && text_[next] == '+')
      at_ = next + 1;
    else if (!begins_with_parameter(text_.substr(std::min(next, text_.size()))))
      lines_.emplace_back();
  }

  // "w=@w" is no name of a device: such a line goes on with the one before.
  static bool begins_with_parameter(std::string_view line) {
    const auto word = line.substr(0, line.find_first_of(" \t\n"));
    const auto equals = word.find('=');
    return equals != std::string_view::npos && equals > 0 && word.find('@') > equals;
  }

  void end_word() {
    quote_ = '\0';
    braces_ = 0;
    if (begun_ && !word_.text.empty()) lines_.back().push_back(std::move(word_));
    word_ = {};
    begun_ = false;
  }

  // "@pinlist", "@@PIN", "@#2", "@#2:net_name", "@attribute".
  void reference() {
    const auto rest = text_.substr(at_ + 1);
    if (rest.starts_with("pinlist")) {
      at_ += 8;
      take_pins(pins_where([](const auto&) { return true; }));
    } else if (rest.starts_with("@")) {
      const auto length = std::min(rest.find_first_of(" \t\n\\),", 1), rest.size());
      const auto name = rest.substr(1, length - 1);
      at_ += length + 1;
      take_pins(pins_called(name));
    } else {
      attribute(rest);
    }
  }

  // Pins of one name are one node; what a netlist ignores is none.
  std::vector<int> pins_where(const std::function<bool(const gxi_xschem_pin_t&)>& is_one) const {
    std::vector<int> found;
    for (std::size_t i = 0; i < symbol_.pins.size(); ++i)
      if (symbol_.pins[i].same_as < 0 && !symbol_.pins[i].ignored && is_one(symbol_.pins[i]))
        found.push_back(static_cast<int>(i));
    return found;
  }
  std::vector<int> pins_called(std::string_view name) const {
    return pins_where([&](const auto& pin) { return pin.attributes.get("name") == name; });
  }
  std::vector<int> pins_at(std::string_view place) const {
    const auto number = gx_whole_number<std::size_t>(place);
    if (!number) return pins_called(place);
    return *number < symbol_.pins.size() ? std::vector<int>{static_cast<int>(*number)}
                                         : std::vector<int>{};
  }

  void attribute(std::string_view rest) {
    std::size_t length = rest.starts_with("#") ? 1 : 0;
    const auto of_name = [&](char c) {
      return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' ||
             (c == ':' && rest.starts_with("#"));
    };
    while (length < rest.size() && of_name(rest[length])) ++length;
    const auto name = rest.substr(0, length);
    at_ += length + 1;
    if (name.empty()) {
      add('@');
      return;
    }
    if (name.front() == '#') {
      const auto colon = std::min(name.find(':'), name.size());
      if (colon == name.size() || name.substr(colon) == ":net_name") {
        take_pins(pins_at(name.substr(1, colon - 1)));
        return;
      }
    }
    substitute(std::string(name));
  }

  // A value of several words is several, unless it is a part of one.
  void substitute(const std::string& name) {
    const bool alone = !begun_;
    const std::string value = name == "name" ? "@name" : value_(name);
    const int braces_before = braces_;
    const char quote_before = quote_;
    begun_ = true;
    word_.within.push_back(name);
    bool begins_line = false;
    for (const char c : value) {
      // A line of the value that continues the one before it.
      if (begins_line && c == '+') {
        begins_line = false;
        continue;
      }
      begins_line = c == '\n' || (begins_line && gxi_xschem_is_blank(c));
      if (gxi_xschem_is_blank(c) && !grouped() && alone) {
        end_word();
        continue;
      }
      if (!begun_) word_.within.push_back(name);
      add(c == '\n' ? ' ' : c);
    }
    braces_ = braces_before;
    quote_ = quote_before;
    if (alone && word_.text == value) word_.attribute = name;
  }

  // Within a word, as in "v(@@A)", pins are only mentioned.
  void take_pins(std::vector<int> pins) {
    const bool mentioned =
        begun_ && !word_.text.empty() &&
        std::string_view("[(~").find(word_.text.back()) == std::string_view::npos;
    if (mentioned || grouped()) {
      for (const int pin : pins) word_.whole += "\1" + std::to_string(pin) + "\2";
      return;
    }
    end_word();
    if (!pins.empty()) lines_.back().push_back({.pins = std::move(pins)});
  }

  std::string_view text_;
  const gxi_xschem_symbol_t& symbol_;
  const std::function<std::string(std::string_view)>& value_;
  std::size_t at_ = 0;
  std::vector<line_t> lines_;
  piece_t word_;
  bool begun_ = false;
  char quote_ = '\0';
  int braces_ = 0;
};

bool has_equals(const line_t& line, std::size_t i) {
  return line[i].text.find('=') != std::string::npos ||
         (i + 1 < line.size() && line[i + 1].text.starts_with("="));
}

std::vector<gxi_xschem_word_t> words_of(const line_t& line) {
  std::vector<gxi_xschem_word_t> words;
  for (const auto& piece : line) {
    for (const int pin : piece.pins) words.push_back({.pin = pin});
    if (!piece.is_pins()) words.push_back({.text = piece.whole});
  }
  return words;
}

class device_reader {
 public:
  device_reader(const line_t& line, const gxi_xschem_symbol_t& symbol, char letter)
      : line_(line), symbol_(symbol), letter_(letter), taken_(symbol.pins.size()) {}

  gxi_xschem_device_t run() {
    take_name();
    const auto most = static_cast<std::size_t>(gxi_spice_nodes(letter_));
    const bool calls = most == static_cast<std::size_t>(gxi_any_nodes);
    std::size_t end = 1;
    for (; end < line_.size(); ++end)
      if (!line_[end].is_pins() && ends_nodes(end, most)) break;
    if (calls) end = called(end);
    for (std::size_t i = 1; i < end; ++i) take_node(i);
    // Pins are nodes wherever they are named.
    for (std::size_t i = end; i < line_.size(); ++i)
      for (const int pin : line_[i].pins) take_pin(pin);
    take_values(end, calls || std::string_view("MQDJZSWON").find(letter_) != std::string::npos);
    take_words();
    return std::move(device_);
  }

 private:
  void take_words() {
    device_.line = words_of(line_);
    std::erase(device_.line.front().text, '#');
    for (std::size_t i = 0, word = 0; i < line_.size(); ++i) {
      for (const auto& [place, node] : node_at_)
        if (place == i) device_.line[word].node = node;
      word += std::max<std::size_t>(line_[i].pins.size(), 1);
    }
  }

  void take_name() {
    std::string name = line_.front().text;
    std::erase(name, '#');
    const auto at = name.find("@name");
    device_.prefix = name.substr(0, std::min(at, name.size()));
    for (const auto& part : line_.front().within)
      if (part != "name") device_.used_up.push_back(part);
  }

  // What a call names: the model or the symbol, else the last word.
  std::size_t called(std::size_t end) const {
    for (std::size_t i = 1; i < end; ++i)
      for (const auto& part : line_[i].within)
        if (part == "symname" || part == "model") return i;
    return end > 1 && !line_[end - 1].is_pins() ? end - 1 : end;
  }

  // Whether a word is where values begin.
  bool ends_nodes(std::size_t i, std::size_t most) const {
    const auto& word = line_[i];
    if (has_equals(line_, i) || gx_iden(word.text, "params:")) return true;
    if (most == static_cast<std::size_t>(gxi_any_nodes)) return false;
    if (count_to(i) >= most) return true;
    return gxi_begins_value(word.text) || word.attribute == "model" || word.attribute == "value";
  }

  std::size_t count_to(std::size_t end) const {
    std::size_t count = 0;
    for (std::size_t i = 1; i < end; ++i) {
      if (!line_[i].is_pins()) ++count;
      for (const int pin : line_[i].pins)
        count += symbol_.pins[static_cast<std::size_t>(pin)].bits.size();
    }
    return count;
  }

  void take_pin(int pin) {
    const auto& of = symbol_.pins[static_cast<std::size_t>(pin)];
    const auto index = static_cast<std::size_t>(of.same_as >= 0 ? of.same_as : pin);
    if (taken_[index]) return;
    taken_[index] = true;
    count_ += of.bits.size();
    device_.nodes.push_back({.pin = static_cast<int>(index)});
  }

  void take_node(std::size_t place) {
    const auto& piece = line_[place];
    for (const int pin : piece.pins) take_pin(pin);
    if (piece.is_pins() || !gxi_is_node(piece.text)) return;
    const auto name = !piece.attribute.empty() ? piece.attribute : "N" + std::to_string(count_ + 1);
    device_.used_up.insert(device_.used_up.end(), piece.within.begin(), piece.within.end());
    node_at_.emplace_back(place, static_cast<int>(device_.nodes.size()));
    device_.nodes.push_back({.name = name, .label = piece.text});
    ++count_;
  }

  void take_values(std::size_t from, bool has_model) {
    bool first = true;
    std::string literal;
    for (std::size_t i = from; i < line_.size(); ++i) {
      const auto& word = line_[i];
      if (word.is_pins()) continue;
      if (has_equals(line_, i)) {
        i = take_parameter(i);
        continue;
      }
      const bool kept =
          !word.attribute.empty() && word.attribute != "symname" && word.attribute != "name";
      if (has_model && first && !kept) {
        device_.model = word.text;
        device_.used_up.insert(device_.used_up.end(), word.within.begin(), word.within.end());
      } else {
        device_.named.insert(device_.named.end(), word.within.begin(), word.within.end());
        literal += (literal.empty() ? "" : " ") + word.text;
      }
      first = false;
      has_literal_ |= !kept && !has_model;
    }
    // "@name @pinlist 0.01" has a value that no attribute gives.
    if (has_literal_ && !unnamed_) device_.parameters.emplace_back("value", literal);
  }

  // "w=@w", "w = @w", "ad='@w * 2'": to the last word of it.
  std::size_t take_parameter(std::size_t i) {
    std::string name = line_[i].text, value;
    const bool own_name = line_[i].attribute.empty();  // not "@VAR = @FUNC"
    const auto equals = name.find('=');
    std::vector<std::string> within = line_[i].within;
    if (equals != std::string::npos) {
      value = name.substr(equals + 1);
      name.resize(equals);
    } else {
      const auto& next = line_[++i];
      value = next.text.substr(1);
      within.insert(within.end(), next.within.begin(), next.within.end());
    }
    if (value.empty() && i + 1 < line_.size() && !line_[i + 1].is_pins() &&
        !has_equals(line_, i + 1)) {
      const auto& next = line_[++i];
      value = next.text;
      within.insert(within.end(), next.within.begin(), next.within.end());
    }
    device_.named.insert(device_.named.end(), within.begin(), within.end());
    const bool is_name = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
      return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
    });
    unnamed_ |= !is_name;  // "TABLE {V(A)} = (0,0) (1,2)"
    if (is_name && own_name && !value.empty() &&
        !(within.size() == 1 && gx_iden(within.front(), name)))
      device_.parameters.emplace_back(name, value);
    return i;
  }

  const line_t& line_;
  const gxi_xschem_symbol_t& symbol_;
  char letter_;
  std::vector<bool> taken_;
  std::vector<std::pair<std::size_t, int>> node_at_;  // where texts are nodes
  std::size_t count_ = 0;
  bool has_literal_ = false, unnamed_ = false;
  gxi_xschem_device_t device_;
};

}  // namespace

std::vector<gxi_xschem_device_t> gxi_xschem_devices(
    std::string_view format, const gxi_xschem_symbol_t& symbol,
    const std::function<std::string(std::string_view)>& value) {
  std::vector<gxi_xschem_device_t> devices;
  const std::string own_name = value("name"), first_letters = value("spiceprefix");
  const auto fill = [&](std::string& text) {
    if (const auto at = text.find("@name"); at != std::string::npos) text.replace(at, 5, own_name);
    std::erase(text, '#');
  };
  for (const auto& line : splitter(format, symbol, value).run()) {
    auto first = line.front().text;
    std::erase(first, '#');
    if (line.front().is_pins() || first.empty() ||
        std::string_view(".*/").find(first.front()) != std::string_view::npos)
      continue;
    if (first.starts_with("@name")) first = own_name;
    // Blocks are called whatever their names begin with.
    const bool calls = symbol.type == "subcircuit" || first.empty();
    const char letter = calls ? 'X' : gx_upper_case(first.front());
    auto device = device_reader(line, symbol, letter).run();
    device.letter = letter;
    if (device.prefix.starts_with(first_letters)) device.prefix.erase(0, first_letters.size());
    fill(device.model);
    for (auto& [name, text] : device.parameters) fill(text);
    for (auto& node : device.nodes) fill(node.label);
    devices.push_back(std::move(device));
  }
  return devices;
}

std::vector<std::vector<gxi_xschem_word_t>> gxi_xschem_commands(
    std::string_view format, const gxi_xschem_symbol_t& symbol,
    const std::function<std::string(std::string_view)>& value) {
  std::vector<std::vector<gxi_xschem_word_t>> commands;
  for (const auto& line : splitter(format, symbol, value).run())
    if (!line.front().is_pins() && line.front().text.starts_with("."))
      commands.push_back(words_of(line));
  return commands;
}
