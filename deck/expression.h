// Values as SPICE writes them: "4.7k", "2*WP", "{w > 1u ? a : b}".
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

// "10u", "4.7k", "1meg", "2.5e-3", "1mil"; letters after a suffix are a unit.
std::optional<double> dk_number(std::string_view text);
// The shortest text that is the same number.
std::string dk_number_text(double value);

// What an expression without names gives; nothing when it has any, or is none.
std::optional<double> dk_evaluate(std::string_view expression);

// What stands for a name in an expression.
struct dk_names_t {
  // Of a parameter: its value, a number or an expression; nothing when it is none.
  std::function<std::optional<std::string>(std::string_view)> parameter;
  // Of x in "v(x)", "v(x,y)", and in "i(x)".
  std::function<std::string(std::string_view)> node, device;
  // The node of a pin, which "@3" stands for.
  std::function<void(int, std::string&)> pin;
};

// The expression with what stands for its names.
std::string dk_substitute(std::string_view expression, const dk_names_t& names);
