// Engineering numbers, digit by digit, so that nothing is rounded.
#include "import/drawing/numbers.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "gx/text/strings.h"

namespace {

struct suffix_t {
  std::string_view text;
  int power;
};
// The longer ones first.
constexpr auto suffixes = std::to_array<suffix_t>({{"MEG", 6},
                                                   {"MIL", 99},
                                                   {"T", 12},
                                                   {"G", 9},
                                                   {"K", 3},
                                                   {"M", -3},
                                                   {"U", -6},
                                                   {"N", -9},
                                                   {"P", -12},
                                                   {"F", -15},
                                                   {"A", -18}});

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_letter(char c) { return std::isalpha(static_cast<unsigned char>(c)) || c == '_'; }

// Takes a number off the head of the text.
std::optional<std::string> take_number(std::string_view& text) {
  std::string digits;
  int power = 0;
  bool point = false;
  std::size_t at = 0;
  for (; at < text.size() && (is_digit(text[at]) || (text[at] == '.' && !point)); ++at) {
    if (text[at] == '.') {
      point = true;
    } else {
      digits += text[at];
      power -= point;
    }
  }
  if (digits.empty()) return std::nullopt;
  text.remove_prefix(at);
  if (!text.empty() && gx_upper_case(text.front()) == 'E') {
    auto rest = text.substr(1);
    if (!rest.empty() && rest.front() == '+') rest.remove_prefix(1);
    int exponent = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), exponent);
    if (error == std::errc() && exponent > -60 && exponent < 60) {
      power += exponent;
      text = rest.substr(static_cast<std::size_t>(end - rest.data()));
    }
  }
  for (const auto& suffix : suffixes) {
    if (!gx_equal(suffix.text, text)) continue;
    if (suffix.power == 99) return std::nullopt;  // thousandths of an inch
    power += suffix.power;
    break;
  }
  while (!text.empty() && is_letter(text.front())) text.remove_prefix(1);  // and the unit

  if (power >= 0) {
    digits.append(static_cast<std::size_t>(power), '0');
  } else {
    const auto places = static_cast<std::size_t>(-power);
    if (digits.size() <= places) digits.insert(0, places + 1 - digits.size(), '0');
    digits.insert(digits.size() - places, 1, '.');
    while (digits.back() == '0') digits.pop_back();
    if (digits.back() == '.') digits.pop_back();
  }
  const auto first = std::min(digits.find_first_not_of('0'), digits.size() - 1);
  digits.erase(0, digits[first] == '.' ? first - 1 : first);
  return digits;
}

}  // namespace

std::optional<std::string> gxi_plain_number(std::string_view text) {
  auto number = take_number(text);
  if (!text.empty()) return std::nullopt;
  return number;
}

std::optional<std::string> gxi_plain_expression(std::string_view text) {
  std::string expression;
  bool operand_next = true;
  int open = 0;
  while (!text.empty()) {
    const char c = text.front();
    if (std::string_view(" '\"{}").find(c) != std::string_view::npos) {
      text.remove_prefix(1);
    } else if (operand_next && (c == '@' || is_letter(c))) {
      if (c == '@') text.remove_prefix(1);
      std::size_t length = 0;
      while (length < text.size() && (is_letter(text[length]) || is_digit(text[length]))) ++length;
      if (length == 0) return std::nullopt;
      expression += text.substr(0, length);
      text.remove_prefix(length);
      if (!text.empty() && text.front() == '(') return std::nullopt;  // a function
      operand_next = false;
    } else if (operand_next && (is_digit(c) || c == '.')) {
      const auto number = take_number(text);
      if (!number) return std::nullopt;
      expression += *number;
      operand_next = false;
    } else if (operand_next && c == '(') {
      expression += c;
      ++open;
      text.remove_prefix(1);
    } else if (!operand_next && c == ')' && open > 0) {
      expression += c;
      --open;
      text.remove_prefix(1);
    } else if (!operand_next && std::string_view("+-*/").find(c) != std::string_view::npos) {
      if (text.substr(0, 2) == "**") return std::nullopt;
      expression += c;
      text.remove_prefix(1);
      operand_next = true;
    } else {
      return std::nullopt;
    }
  }
  if (operand_next || open != 0) return std::nullopt;
  return "(" + expression + ")";
}

void gxi_write_numbers(gxi_design_t& design, const std::vector<std::string>& names) {
  if (names.empty()) return;
  const auto make_plain = [&](std::vector<gxi_property_t>& properties, const gxm_source_t& source) {
    for (auto& property : properties) {
      if (property.value.empty() || std::none_of(names.begin(), names.end(), [&](const auto& name) {
            return gx_iden(name, property.name);
          }))
        continue;
      auto plain = gxi_plain_number(property.value);
      if (!plain) plain = gxi_plain_expression(property.value);
      if (plain && plain->size() <= gxi_longest_number)
        property.value = *plain;
      else
        gxm_complain(design.warnings, source,
                     property.name + " is no number that an expansion can read: " + property.value);
    }
  };
  for (auto& cell : design.cells) {
    make_plain(cell.symbol.properties, cell.symbol.source);
    make_plain(cell.symbol.defaults, cell.symbol.source);
    if (!cell.sheet) continue;
    for (auto& instance : cell.sheet->instances) make_plain(instance.properties, instance.source);
  }
}
