// A small parser of label lists.
#include "import/xschem/labels.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "gx/text/numbers.h"

namespace {

constexpr int deepest = 50;  // parentheses

using names_t = std::vector<std::string>;

// Cuts the text at each `separator`.
std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto at = text.find(separator);
    parts.push_back(text.substr(0, at));
    if (at == std::string_view::npos) return parts;
    text.remove_prefix(at + separator.size());
  }
}

struct too_much {};  // the label is not of the form, or has too many bits

class parser {
 public:
  explicit parser(std::string_view text) : text_(text) {}

  names_t run() {
    names_t names = list(0);
    if (!text_.empty()) throw too_much{};
    return names;
  }

 private:
  bool next_is(char c) const { return !text_.empty() && text_.front() == c; }
  bool take(char c) {
    if (!next_is(c)) return false;
    text_.remove_prefix(1);
    return true;
  }

  names_t list(int depth) {
    if (depth > deepest) throw too_much{};
    names_t all;
    do {
      names_t more = item(depth);
      if (all.size() + more.size() > gxi_xschem_most_bits) throw too_much{};
      all.insert(all.end(), more.begin(), more.end());
    } while (take(','));
    return all;
  }

  names_t item(int depth) {
    if (const auto times = factor_before()) {
      const names_t once = item(depth);
      names_t all;
      check(once.size(), *times);
      for (int i = 0; i < *times; ++i) all.insert(all.end(), once.begin(), once.end());
      return all;
    }
    names_t names;
    if (take('(')) {
      names = list(depth + 1);
      if (!take(')')) throw too_much{};
    } else {
      names = name();
    }
    while (take('*')) {
      const auto length = std::min(text_.find_first_not_of("0123456789"), text_.size());
      const auto times = gx_whole_number<int>(text_.substr(0, length));
      if (!times) throw too_much{};
      text_.remove_prefix(length);
      check(names.size(), *times);
      names_t all;
      for (const auto& one : names)
        for (int i = 0; i < *times; ++i) all.push_back(one);
      names = std::move(all);
    }
    return names;
  }

  static void check(std::size_t count, int times) {
    if (times < 1 || count * static_cast<std::size_t>(times) > gxi_xschem_most_bits)
      throw too_much{};
  }

  // "4*" before a name; nothing is taken otherwise.
  std::optional<int> factor_before() {
    const auto digits = text_.find_first_not_of("0123456789");
    if (digits == 0 || digits == std::string_view::npos || text_[digits] != '*')
      return std::nullopt;
    const auto times = gx_whole_number<int>(text_.substr(0, digits));
    if (times) text_.remove_prefix(digits + 1);
    return times;
  }

  // Letters and, among them, ranges in brackets.
  names_t name() {
    names_t names{""};
    bool any = false;
    while (!text_.empty()) {
      if (take('[')) {
        const auto close = text_.find(']');
        if (close == std::string_view::npos) throw too_much{};
        const names_t indexes = range(text_.substr(0, close));
        text_.remove_prefix(close + 1);
        check(names.size(), static_cast<int>(indexes.size()));
        names_t all;
        for (const auto& head : names)
          for (const auto& index : indexes) all.push_back(head + index);
        names = std::move(all);
      } else {
        const auto length = std::min(text_.find_first_of(",*()[]"), text_.size());
        if (length == 0) break;
        for (auto& head : names) head += text_.substr(0, length);
        text_.remove_prefix(length);
      }
      any = true;
    }
    if (!any) throw too_much{};
    return names;
  }

  // "7:0" is [7] ... [0], "3..0" is 3 ... 0; a text that is no range stays in its brackets.
  static names_t range(std::string_view text) {
    names_t all;
    for (const auto part : split(text, ",")) {
      const bool bare = part.find("..") != std::string_view::npos;
      std::vector<int> numbers;
      for (const auto word : split(part, bare ? ".." : ":")) {
        const auto number = gx_whole_number<int>(word);
        if (!number) return {"[" + std::string(text) + "]"};
        numbers.push_back(*number);
      }
      const int first = numbers.front(), last = numbers.size() > 1 ? numbers[1] : first;
      const long step = numbers.size() > 2 && numbers[2] != 0 ? std::abs(long{numbers[2]}) : 1;
      if ((std::abs(long{first} - last) / step) >= static_cast<long>(gxi_xschem_most_bits))
        throw too_much{};
      for (long i = first; first <= last ? i <= last : i >= last; i += first <= last ? step : -step)
        all.push_back(bare ? std::to_string(i) : "[" + std::to_string(i) + "]");
      if (all.size() > gxi_xschem_most_bits) throw too_much{};
    }
    return all;
  }

  std::string_view text_;
};

bool is_index(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789:.,") == std::string_view::npos &&
         text.front() >= '0' && text.front() <= '9';
}

}  // namespace

std::vector<std::string> gxi_xschem_bits(std::string_view label) {
  if (label.find_first_of(",*[(") == std::string_view::npos) return {std::string(label)};
  std::string text(label);
  std::erase(text, ' ');
  try {
    return parser(text).run();
  } catch (const too_much&) {
    return {std::string(label)};
  }
}

std::string gxi_xschem_tapped(std::string_view bus, std::string_view tap) {
  const bool in_brackets = tap.size() > 2 && tap.front() == '[' && tap.back() == ']';
  const auto indexes = in_brackets ? tap.substr(1, tap.size() - 2) : tap;
  if (!is_index(indexes)) return std::string(tap);
  // The name before the first range of the bus: "ADD" of "CK, S1, ADD[3:0]".
  const auto open = std::min(bus.find('['), bus.size());
  const auto head = bus.substr(0, open);
  const auto before = head.find_last_of(", (*");
  const std::string base(before == std::string_view::npos ? head : head.substr(before + 1));
  // "D[15..0]" has the bits D15 ... D0.
  const auto range = bus.substr(open, bus.find(']', open) - open);
  const bool bare = range.find("..") != std::string_view::npos;
  if (!bare || indexes.find("..") != std::string_view::npos)
    return base + "[" + std::string(indexes) + "]";
  if (indexes.find(':') == std::string_view::npos && indexes.find(',') == std::string_view::npos)
    return base + std::string(indexes);
  std::string text = base + "[" + std::string(indexes) + "]";
  if (const auto colon = text.find(':'); colon != std::string::npos) text.replace(colon, 1, "..");
  return text;
}

gxi_xschem_port_label_t gxi_xschem_port_label(std::string_view label) {
  gxi_xschem_port_label_t port{.nets = std::string(label)};
  std::string type;
  if (const auto open = label.find('('); label.starts_with('%') && open != std::string::npos) {
    type = label.substr(0, open + 1);
    port.nets.erase(0, open + 1);
    std::erase(port.nets, ')');
    while (port.nets.ends_with(' ')) port.nets.pop_back();
    std::replace(port.nets.begin(), port.nets.end(), ' ', ',');
  }
  for (const auto& net : gxi_xschem_bits(port.nets))
    port.around.emplace_back(net.starts_with('~') ? "~@" : "@");
  if (!type.empty() && !port.around.empty()) {
    port.around.front().insert(0, type);
    port.around.back() += ')';
  }
  std::erase(port.nets, '~');
  return port;
}
