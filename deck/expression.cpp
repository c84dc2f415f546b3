// Scanning names, and a reader of arithmetic that goes down by the rank of operators.
#include "deck/expression.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>

#include "deck/letters.h"
#include "gx/text/strings.h"

namespace {

constexpr int deepest = 60;  // parentheses within parentheses

bool is_of_name(char c) { return dk_begins_name(c) || dk_is_digit(c); }

struct suffix_t {
  std::string_view letters;
  double factor;
};
constexpr auto suffixes = std::to_array<suffix_t>({{"meg", 1e6},
                                                   {"mil", 25.4e-6},
                                                   {"t", 1e12},
                                                   {"g", 1e9},
                                                   {"k", 1e3},
                                                   {"m", 1e-3},
                                                   {"u", 1e-6},
                                                   {"n", 1e-9},
                                                   {"p", 1e-12},
                                                   {"f", 1e-15},
                                                   {"a", 1e-18}});

// How long the number is that the text begins with, its suffix and unit included.
std::size_t number_length(std::string_view text, double& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc()) return 0;
  auto length = static_cast<std::size_t>(end - text.data());
  const auto rest = text.substr(length);
  for (const auto& suffix : suffixes)
    if (gx_iden(rest.substr(0, suffix.letters.size()), suffix.letters)) {
      value *= suffix.factor;
      break;
    }
  while (length < text.size() && is_of_name(text[length])) ++length;
  return length;
}

using function_t = double (*)(double, double);
struct known_function_t {
  std::string_view name;
  int arguments;
  function_t value;
};
constexpr auto functions = std::to_array<known_function_t>({
    {"sqrt", 1, [](double a, double) { return std::sqrt(a); }},
    {"abs", 1, [](double a, double) { return std::fabs(a); }},
    {"exp", 1, [](double a, double) { return std::exp(a); }},
    {"ln", 1, [](double a, double) { return std::log(a); }},
    {"log", 1, [](double a, double) { return std::log(a); }},
    {"log10", 1, [](double a, double) { return std::log10(a); }},
    {"sin", 1, [](double a, double) { return std::sin(a); }},
    {"cos", 1, [](double a, double) { return std::cos(a); }},
    {"tan", 1, [](double a, double) { return std::tan(a); }},
    {"atan", 1, [](double a, double) { return std::atan(a); }},
    {"tanh", 1, [](double a, double) { return std::tanh(a); }},
    {"int", 1, [](double a, double) { return std::trunc(a); }},
    {"floor", 1, [](double a, double) { return std::floor(a); }},
    {"ceil", 1, [](double a, double) { return std::ceil(a); }},
    {"nint", 1, [](double a, double) { return std::nearbyint(a); }},
    {"sgn", 1, [](double a, double) { return a > 0   ? 1.0
                                             : a < 0 ? -1.0
                                                     : 0.0; }},
    {"min", 2, [](double a, double b) { return std::fmin(a, b); }},
    {"max", 2, [](double a, double b) { return std::fmax(a, b); }},
    {"pow", 2, [](double a, double b) { return std::pow(a, b); }},
});

struct operator_t {
  std::string_view sign;
  int rank;  // the higher binds the closer
  function_t value;
};
// Those that begin like others come before them.
constexpr auto operators = std::to_array<operator_t>({
    {"||", 1, [](double a, double b) { return a != 0 || b != 0 ? 1.0 : 0.0; }},
    {"&&", 2, [](double a, double b) { return a != 0 && b != 0 ? 1.0 : 0.0; }},
    {"==", 3, [](double a, double b) { return a == b ? 1.0 : 0.0; }},
    {"!=", 3, [](double a, double b) { return a != b ? 1.0 : 0.0; }},
    {"<=", 4, [](double a, double b) { return a <= b ? 1.0 : 0.0; }},
    {">=", 4, [](double a, double b) { return a >= b ? 1.0 : 0.0; }},
    {"<", 4, [](double a, double b) { return a < b ? 1.0 : 0.0; }},
    {">", 4, [](double a, double b) { return a > b ? 1.0 : 0.0; }},
    {"+", 5, [](double a, double b) { return a + b; }},
    {"-", 5, [](double a, double b) { return a - b; }},
    {"**", 7, [](double a, double b) { return std::pow(a, b); }},
    {"^", 7, [](double a, double b) { return std::pow(a, b); }},
    {"*", 6, [](double a, double b) { return a * b; }},
    {"/", 6, [](double a, double b) { return a / b; }},
});
constexpr int unary_rank = 6;

// Nothing but numbers, operators and functions; `ok` is false from the first other thing on.
class arithmetic {
 public:
  explicit arithmetic(std::string_view text) : text_(text) {}

  std::optional<double> run() {
    const double value = choice();
    skip();
    if (!ok_ || !text_.empty() || !std::isfinite(value)) return std::nullopt;
    return value;
  }

 private:
  void skip() {
    while (!text_.empty() && std::isspace(static_cast<unsigned char>(text_.front())) != 0)
      text_.remove_prefix(1);
  }
  bool take(std::string_view sign) {
    skip();
    if (!text_.starts_with(sign)) return false;
    text_.remove_prefix(sign.size());
    return true;
  }
  double fail() {
    ok_ = false;
    return 0;
  }

  double choice() {
    if (++depth_ > deepest) return fail();
    double value = binary(0);
    if (ok_ && take("?")) {
      const double yes = choice();
      if (!take(":")) return fail();
      const double no = choice();
      value = value != 0 ? yes : no;
    }
    --depth_;
    return value;
  }

  double binary(int rank) {
    double value = operand();
    while (ok_) {
      skip();
      const operator_t* found = nullptr;
      for (const auto& known : operators)
        if (found == nullptr && text_.starts_with(known.sign)) found = &known;
      if (found == nullptr || found->rank <= rank) break;
      text_.remove_prefix(found->sign.size());
      value = found->value(value, binary(found->rank));
    }
    return value;
  }

  double operand() {
    skip();
    if (text_.empty() || ++depth_ > deepest) return fail();
    double value = 0;
    if (take("-")) {
      value = -binary(unary_rank);
    } else if (take("+")) {
      value = binary(unary_rank);
    } else if (take("!")) {
      value = operand() == 0 ? 1 : 0;
    } else if (take("(")) {
      value = choice();
      if (!take(")")) return fail();
    } else if (dk_begins_name(text_.front())) {
      value = call();
    } else {
      const auto length = number_length(text_, value);
      if (length == 0) return fail();
      text_.remove_prefix(length);
    }
    --depth_;
    return value;
  }

  double call() {
    std::size_t length = 0;
    while (length < text_.size() && is_of_name(text_[length])) ++length;
    const auto name = text_.substr(0, length);
    text_.remove_prefix(length);
    if (!take("(")) return fail();
    const double first = choice();
    const bool two = take(",");
    const double second = two ? choice() : 0;
    if (!take(")")) return fail();
    for (const auto& known : functions)
      if (gx_iden(known.name, name) && known.arguments == (two ? 2 : 1))
        return known.value(first, second);
    return fail();
  }

  std::string_view text_;
  int depth_ = 0;
  bool ok_ = true;
};

// "@3" as the node of that pin, "@@" as one sign: how long it is.
std::size_t put_pin(std::string_view text, const dk_names_t& names, std::string& out) {
  int pin = 0;
  const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), pin);
  if (error == std::errc() && pin > 0) {
    names.pin(pin, out);
    return static_cast<std::size_t>(end - text.data());
  }
  out += '@';
  return text.starts_with("@@") ? 2 : 1;
}

// What is in the parentheses that the text begins with, each argument by `replaced`.
std::size_t put_arguments(std::string_view text, std::string& out, const dk_names_t& names,
                          const std::function<std::string(std::string_view)>& replaced) {
  std::size_t at = 1;
  out += '(';
  while (at < text.size() && text[at] != ')') {
    std::size_t end = at;
    while (end < text.size() && text[end] != ')' && text[end] != ',' && !dk_is_blank(text[end]))
      ++end;
    if (end == at) {
      out += text[at++];
      continue;
    }
    if (text[at] == '@') {
      at += put_pin(text.substr(at), names, out);
      continue;
    }
    out += replaced(text.substr(at, end - at));
    at = end;
  }
  return at;
}

}  // namespace

std::optional<double> dk_number(std::string_view text) {
  double value = 0;
  const bool minus = text.starts_with('-');
  if (minus || text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || text.front() == '-' || dk_begins_name(text.front()) ||
      number_length(text, value) != text.size())
    return std::nullopt;
  return minus ? -value : value;
}

std::string dk_number_text(double value) {
  std::array<char, 40> digits{};
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  return {digits.data(), error == std::errc() ? end : digits.data()};
}

std::optional<double> dk_evaluate(std::string_view expression) {
  return arithmetic(expression).run();
}

std::string dk_substitute(std::string_view expression, const dk_names_t& names) {
  std::string out;
  for (std::size_t at = 0; at < expression.size();) {
    const auto rest = expression.substr(at);
    double ignored = 0;
    if (dk_is_digit(rest.front()) ||
        (rest.front() == '.' && rest.size() > 1 && dk_is_digit(rest[1]))) {
      const auto length = std::max<std::size_t>(number_length(rest, ignored), 1);
      out += rest.substr(0, length);
      at += length;
      continue;
    }
    if (rest.front() == '@') {
      at += put_pin(rest, names, out);
      continue;
    }
    if (!dk_begins_name(rest.front())) {
      out += rest.front();
      ++at;
      continue;
    }
    std::size_t length = 0;
    while (length < rest.size() && is_of_name(rest[length])) ++length;
    const auto name = rest.substr(0, length);
    auto next = length;
    while (next < rest.size() && dk_is_blank(rest[next])) ++next;
    const bool calls = next < rest.size() && rest[next] == '(';
    at += length;
    if (calls && (gx_iden(name, "v") || gx_iden(name, "i"))) {
      out += name;
      at += next - length;
      at += put_arguments(rest.substr(next), out, names,
                          gx_iden(name, "v") ? names.node : names.device);
      continue;
    }
    const auto value = calls ? std::nullopt : names.parameter(name);
    const bool plain = value && dk_number(*value) && !value->starts_with('-');
    out += !value ? std::string(name) : plain ? *value : "(" + *value + ")";
  }
  return out;
}
