// Decodes the texts of kept properties: lists of up to three numbers, and signal states.
// Expressions are evaluated in expression.cpp.
#include "expand/sheet/values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "expand/sheet/expression.h"
#include "gx/text/at.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

constexpr std::string_view outer_skipped = " \"'";  // around a value
constexpr std::string_view separators = " ,\"'_";   // between the numbers of a list

bool is_digit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(outer_skipped);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(outer_skipped) - first + 1);
}

template <typename Number>
kv_values_t<Number> failed_values() {
  kv_values_t<Number> values;
  values.error_found = true;
  return values;
}

// Decimal digits only, within 16 bits.
struct integer_number {
  using type = std::int32_t;
  static gx_parsed<std::int16_t> read(std::string_view text) { return gx_string_to_int16(text); }
  static type mean(type a, type b) { return (a + b) >> 1; }
};

// Digits with points: every digit after the first point divides by a further 10.
struct real_number {
  using type = float;
  static gx_parsed<float> read(std::string_view text) {
    return text.starts_with('-') ? gx_parsed<float>{0, true} : gx_string_to_shortreal(text);
  }
  static type mean(type a, type b) { return (a + b) / 2; }
};

// One, two or three numbers; what follows the third is not looked at.
template <typename Kind>
kv_values_t<typename Kind::type> decode_list(std::string_view text) {
  using Number = typename Kind::type;
  std::array<Number, 3> number{};
  int n = 0;
  std::size_t pos = text.find_first_not_of(separators);
  while (pos != std::string_view::npos && n < 3) {
    const std::size_t end = std::min(text.find_first_of(separators, pos), text.size());
    const auto read = Kind::read(text.substr(pos, end - pos));
    if (read.error) return failed_values<Number>();
    gx_at(number, n++) = read.value;
    pos = text.find_first_not_of(separators, end);
  }
  const auto [a, b, c] = number;
  if (n == 1) return {a, a, a, false, 1};
  if (n == 2) return {a, Kind::mean(a, b), b, false, 2};
  return {a, b, c, false, n};
}

kv_values_t<float> decode_expression(std::string_view text, const kv_scope_t& scope) {
  return text.back() == ')' ? kv_conv_complex_expr(text, scope) : failed_values<float>();
}

// The nearest whole number of each value; an error when one lies outside [least, most].
kv_values_t<std::int32_t> rounded(const kv_values_t<float>& values, double least, double most) {
  if (values.error_found) return failed_values<std::int32_t>();
  kv_values_t<std::int32_t> result;
  result.num_values = values.num_values;
  const auto round = [&](float value, std::int32_t& whole) {
    const double nearest = std::floor(static_cast<double>(value) + 0.5);
    if (!(nearest >= least && nearest <= most)) return false;
    whole = static_cast<std::int32_t>(nearest);
    return true;
  };
  if (round(values.value1, result.value1) && round(values.value2, result.value2) &&
      round(values.value3, result.value3)) {
    return result;
  }
  return failed_values<std::int32_t>();
}

}  // namespace

kv_values_t<std::int32_t> kv_decode_3_valuei(std::string_view text, const kv_scope_t& scope) {
  text = trimmed(text);
  if (!text.starts_with('(')) return decode_list<integer_number>(text);
  return rounded(decode_expression(text, scope), std::numeric_limits<std::int16_t>::min(),
                 std::numeric_limits<std::int16_t>::max());
}

kv_values_t<float> kv_decode_3_valuer(std::string_view text, const kv_scope_t& scope) {
  text = trimmed(text);
  return text.starts_with('(') ? decode_expression(text, scope) : decode_list<real_number>(text);
}

kv_values_t<std::int32_t> kv_decode_3_valuet(std::string_view text, const kv_scope_t& scope) {
  kv_values_t<float> times = kv_decode_3_valuer(text, scope);
  if (times.error_found) return failed_values<std::int32_t>();
  if (scope.setup.time_step <= 0) {
    kv_values_t<std::int32_t> none;
    none.num_values = times.num_values;
    return none;
  }
  times.value1 /= scope.setup.time_step;
  times.value2 /= scope.setup.time_step;
  times.value3 /= scope.setup.time_step;
  return rounded(times, std::numeric_limits<std::int32_t>::min(),
                 std::numeric_limits<std::int32_t>::max());
}

bool kv_depends_on_macro(std::string_view text, const kv_setup_t& setup) {
  text = trimmed(text);
  if (!text.starts_with('(')) return false;
  // Blanks do not count in an expression, so "R 1" names R1.
  std::array<char, gx_max_string_length> name;
  std::size_t len = 0;
  const auto is_name_of_macro = [&] {
    const bool is_name = len > 0 && !is_digit(name[0]) && name[0] != '.';
    return is_name && kv_find_parameter_value({name.data(), len}, setup).error_found;
  };
  for (char c : text.substr(0, name.size())) {
    if (c == ' ') continue;
    if (std::string_view("()+-*/").find(c) == std::string_view::npos) {
      name[len++] = c;
    } else {
      if (is_name_of_macro()) return true;
      len = 0;
    }
  }
  return is_name_of_macro();
}

kv_state_t kv_statechar_state(std::string_view word) {
  constexpr std::string_view levels = "I0X1", strengths = "UZRWS";
  constexpr std::size_t strongest = 4;
  kv_state_t result;
  result.error_found = true;
  if (word.empty() || word.size() > 3) return result;
  result.fixed = gx_upper_case(word.back()) == 'F';
  if (word.size() == 3 && !result.fixed) return result;

  const bool has_strength = word.size() == 3 || (word.size() == 2 && !result.fixed);
  const auto level = levels.find(gx_upper_case(word[0]));
  const auto strength = has_strength ? strengths.find(gx_upper_case(word[1])) : strongest;
  if (level == std::string_view::npos || strength == std::string_view::npos) return result;
  result.state = static_cast<std::int8_t>(4 * strength + level);
  result.error_found = false;
  return result;
}
