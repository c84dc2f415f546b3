// Evaluates the parenthesised expressions of property values, all three value positions at once.
//
// Groups are evaluated from the innermost outwards: each is replaced by its result, until a plain
// chain of operands and operators is left. All arithmetic is in float32.
#include "expand/sheet/expression.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "expand/debug.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

constexpr std::size_t max_expression = 200;  // characters
constexpr std::size_t result_size = 5;       // characters that a group's result counts as

using triple = std::array<float, 3>;

// One character of an expression, or the result of a group in its place (c is 0).
struct piece {
  char c;
  triple value;
  bool is_value() const { return c == 0; }
};
using pieces = std::span<const piece>;

bool is_operator(const piece& p) { return p.c == '+' || p.c == '-' || p.c == '*' || p.c == '/'; }
bool is_product(char op) { return op == '*' || op == '/'; }
bool starts_name(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

kv_values_t<float> failed_value() {
  kv_values_t<float> result;
  result.error_found = true;
  return result;
}

kv_values_t<float> found(float value1, float value2, float value3) {
  return {value1, value2, value3, false, 3};
}

// A name is a parameter or else a kept property of the enclosing macro.
kv_values_t<float> find_name(std::string_view name, const kv_scope_t& scope) {
  const auto parameter = kv_find_parameter_value(name, scope.setup);
  return parameter.error_found ? kv_find_property_inst_value(name, scope) : parameter;
}

// The value of one operand: the result of a group, a name or a number.
std::optional<triple> operand_value(pieces part, const kv_scope_t& scope) {
  if (part.size() == 1 && part[0].is_value()) return part[0].value;
  std::array<char, max_expression> buffer;
  std::transform(part.begin(), part.end(), buffer.begin(),
                 [](const piece& p) { return p.is_value() ? '^' : p.c; });
  const std::string_view text(buffer.data(), part.size());
  // A result beside other characters, as in "2(3)", leaves no operator where one is expected.
  if (std::any_of(part.begin(), part.end(), [](const piece& p) { return p.is_value(); })) {
    kv_debug(" KV_CONV_SIMPLE_EXPR : error :3: %.*s\n", static_cast<int>(text.size()), text.data());
    return std::nullopt;
  }
  if (starts_name(text.front())) {
    const auto values = find_name(text, scope);
    if (!values.error_found) return triple{values.value1, values.value2, values.value3};
    kv_debug(" KV_CONV_SIMPLE_EXPR : error :FP: %.*s\n", static_cast<int>(text.size()),
             text.data());
    return std::nullopt;
  }
  const auto number = gx_string_to_shortreal(text);
  if (!number.error) return triple{number.value, number.value, number.value};
  kv_debug(" KV_CONV_SIMPLE_EXPR : error :3: %.*s\n", static_cast<int>(text.size()), text.data());
  return std::nullopt;
}

// left op right; nothing when it would divide by 0.
std::optional<triple> apply(char op, const triple& left, const triple& right) {
  triple result;
  for (std::size_t i = 0; i < result.size(); ++i) {
    if (op == '/' && right[i] == 0.0F) {
      kv_debug(" KV_CONV_SIMPLE_EXPR : error : div by 0 : \n");
      return std::nullopt;
    }
    result[i] = op == '/'   ? left[i] / right[i]
                : op == '*' ? left[i] * right[i]
                : op == '-' ? left[i] - right[i]
                            : left[i] + right[i];
  }
  return result;
}

// Evaluates an expression without parentheses. One of no or too many characters gives 0.
std::optional<triple> kv_conv_simple_expr(pieces text, const kv_scope_t& scope) {
  triple sum{}, term{};
  std::size_t length = 0;
  for (const piece& p : text) length += p.is_value() ? result_size : 1;
  if (length < 1 || length > max_expression) {
    kv_debug(" KV_CONV_SIMPLE_EXPR : error :0: str.len : %d\n", static_cast<int>(length));
    return sum;
  }
  std::size_t pos = 0;
  char op = '+';
  if (text[0].c == '+' || text[0].c == '-') op = text[pos++].c;
  for (;;) {
    const auto rest = text.subspan(pos);
    const auto operand_end = std::find_if(rest.begin(), rest.end(), is_operator);
    const auto part = rest.first(static_cast<std::size_t>(operand_end - rest.begin()));
    if (part.empty()) {
      kv_debug(" KV_CONV_SIMPLE_EXPR : error :5: Invalid streal_len : 0\n");
      return std::nullopt;
    }
    const auto operand = operand_value(part, scope);
    if (!operand) return std::nullopt;

    pos += part.size();
    const bool at_end = pos == text.size();
    const char next = at_end ? '+' : text[pos].c;
    // A product is gathered in the term and added to the sum where it ends.
    const auto result = apply(op, is_product(op) || is_product(next) ? term : sum, *operand);
    if (!result) return std::nullopt;
    if (is_product(next)) {
      term = *result;
    } else {
      sum = is_product(op) ? *apply('+', sum, *result) : *result;
      term = {};
    }
    if (at_end) return sum;
    op = next;
    ++pos;
  }
}

// An expression whose groups are replaced by their results one after the other.
struct expression {
  std::array<piece, max_expression> piece_;
  std::size_t size = 0;

  pieces part(std::size_t from, std::size_t to) const {
    return pieces(piece_).subspan(from, to - from);
  }
  // Replaces the last group (its content has no parentheses) by its result.
  bool fold_last_group(const kv_scope_t& scope);
};

bool expression::fold_last_group(const kv_scope_t& scope) {
  std::size_t open = size;
  while (open > 0 && piece_[open - 1].c != '(') --open;
  std::size_t close = open;
  while (close < size && piece_[close].c != ')') ++close;
  if (open == 0 || close == size) return false;
  const auto result = kv_conv_simple_expr(part(open, close), scope);
  if (!result) return false;
  piece_[open - 1] = {0, *result};
  std::copy(piece_.begin() + static_cast<std::ptrdiff_t>(close) + 1,
            piece_.begin() + static_cast<std::ptrdiff_t>(size),
            piece_.begin() + static_cast<std::ptrdiff_t>(open));
  size -= close - open + 1;
  return true;
}

}  // namespace

kv_values_t<float> kv_conv_complex_expr(std::string_view text, const kv_scope_t& scope) {
  if (text.empty() || text.size() > max_expression) {
    kv_debug(" KV_CONV_COMPLEX_EXPR : error :1: str.len : %d\n", static_cast<int>(text.size()));
    return {};
  }
  if (text.size() < 3) return find_name({}, scope);

  std::array<char, max_expression> buffer;
  const auto last =
      std::copy_if(text.begin(), text.end(), buffer.begin(), [](char c) { return c != ' '; });
  const std::string_view compact(buffer.data(), static_cast<std::size_t>(last - buffer.begin()));
  if (compact.find_first_of("()*+-./") == std::string_view::npos) return find_name(compact, scope);

  const auto nbl = std::count(compact.begin(), compact.end(), '(');
  const auto nbr = std::count(compact.begin(), compact.end(), ')');
  if (nbl != nbr) {
    kv_debug(" KV_CONV_COMPLEX_EXPR : ERROR :2: nbl : %d  : nbr : %d\n", static_cast<int>(nbl),
             static_cast<int>(nbr));
    return failed_value();
  }
  expression expr;
  for (char c : compact) expr.piece_[expr.size++].c = c == 0 ? '?' : c;
  for (auto group = nbl; group > 0; --group) {
    if (!expr.fold_last_group(scope)) {
      kv_debug(" KV_CONV_COMPLEX_EXPR :5: ERROR  FOUND \n");
      return failed_value();
    }
  }
  const auto result = kv_conv_simple_expr(expr.part(0, expr.size), scope);
  if (!result) {
    kv_debug(" KV_CONV_COMPLEX_EXPR :6: ERROR  FOUND \n");
    return failed_value();
  }
  return found((*result)[0], (*result)[1], (*result)[2]);
}

kv_values_t<float> kv_find_parameter_value(std::string_view name, const kv_setup_t& setup) {
  for (const kv_param_in_record_t& parameter : setup.parameter) {
    if (gx_iden(name, gx_view(parameter.name))) {
      return found(parameter.nvalue[0], parameter.nvalue[1], parameter.nvalue[2]);
    }
  }
  return failed_value();
}

kv_values_t<float> kv_find_property_inst_value(std::string_view name, const kv_scope_t& scope) {
  const auto& list = scope.setup.property_instance;
  const auto entry = std::find_if(list.begin(), list.end(), [name](const auto& prop) {
    return gx_iden(name, gx_view(prop.name));
  });
  if (entry == list.end() || scope.expand_level < 2) return failed_value();
  if (!scope.design.macros.holds(scope.macro_level)) {
    kv_debug(" KV_FIND_PROPERTY_INST_VALUE : macro_level  : %d   : max_macro_cur  : %d\n",
             scope.macro_level, scope.design.macros.count);
    kv_error_stop();
  }
  const kv_macro_record_t& macro = scope.design.macros[scope.macro_level];
  const auto k = static_cast<std::int32_t>(entry - list.begin());
  const kv_prop_record_t& prop = kv_record(scope.design.props, macro.first_prop + k);
  switch (prop.prop_type) {
    case kv_prop_int:
      return found(gx_float(prop.valuei[0]), gx_float(prop.valuei[1]), gx_float(prop.valuei[2]));
    case kv_prop_time:
      return found(gx_float(prop.valuet[0]) * scope.setup.time_step,
                   gx_float(prop.valuet[1]) * scope.setup.time_step,
                   gx_float(prop.valuet[2]) * scope.setup.time_step);
    case kv_prop_real:
      return found(prop.valuer[0], prop.valuer[1], prop.valuer[2]);
    default:
      return failed_value();
  }
}
