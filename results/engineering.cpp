#include "results/engineering.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

struct suffix_t {
  int power;
  std::string_view before_unit, alone;
};
constexpr std::array suffixes{
    suffix_t{-18, "a", "a"}, suffix_t{-15, "f", "f"}, suffix_t{-12, "p", "p"},
    suffix_t{-9, "n", "n"},  suffix_t{-6, "u", "u"},  suffix_t{-3, "m", "m"},
    suffix_t{0, "", ""},     suffix_t{3, "k", "k"},   suffix_t{6, "M", "meg"},
    suffix_t{9, "G", "g"},   suffix_t{12, "T", "t"}};

bool is_unit_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// The power of ten that letters after a number mean.
int power_of(std::string letters) {
  for (char& c : letters)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  if (letters.starts_with("meg")) return 6;
  for (const auto& suffix : suffixes) {
    if (suffix.alone.size() == 1 && letters.starts_with(suffix.alone)) return suffix.power;
  }
  return 0;
}

// Rounded to so many digits, as "1.235e-05".
int exponent_of(double number, int digits, std::array<char, 64>& text) {
  std::snprintf(text.data(), text.size(), "%.*e", digits - 1, number);
  const std::string_view written(text.data());
  int exponent = 0;
  const char* from = written.data() + written.find('e') + 1;
  if (*from == '+') ++from;
  std::from_chars(from, written.data() + written.size(), exponent);
  return exponent;
}

std::string without_end_zeros(std::string number) {
  if (number.find('.') == std::string::npos) return number;
  number.erase(number.find_last_not_of('0') + 1);
  if (number.ends_with('.')) number.pop_back();
  return number;
}

}  // namespace

std::string rs_engineering(double number, int digits, std::string_view unit) {
  const std::string blank_unit = unit.empty() ? "" : " " + std::string(unit);
  if (std::isnan(number)) return "nan" + blank_unit;
  if (std::isinf(number)) return (number < 0 ? "-inf" : "inf") + blank_unit;
  std::array<char, 64> text;
  const int exponent = exponent_of(number, digits, text);
  const int power = 3 * static_cast<int>(std::floor(exponent / 3.0));
  if (number == 0) return "0" + blank_unit;
  const auto suffix = std::ranges::find(suffixes, power, &suffix_t::power);
  if (suffix == suffixes.end()) {
    std::snprintf(text.data(), text.size(), "%.*g", digits, number);
    return text.data() + blank_unit;
  }
  const int decimals = std::max(digits - 1 - (exponent - power), 0);
  std::snprintf(text.data(), text.size(), "%.*f", decimals, number / std::pow(10.0, power));
  std::string written = without_end_zeros(text.data());
  if (unit.empty()) return written.append(suffix->alone);
  return written.append(" ").append(suffix->before_unit).append(unit);
}

std::optional<double> rs_read_number(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || !std::isfinite(number)) return std::nullopt;
  const std::string_view letters(read.ptr, static_cast<std::size_t>(end - read.ptr));
  if (!std::ranges::all_of(letters, is_unit_letter)) return std::nullopt;
  // Powers of ten are exact, their reciprocals are not: "100n" is to be 100e-9.
  const int power = power_of(std::string(letters));
  number = power < 0 ? number / std::pow(10.0, -power) : number * std::pow(10.0, power);
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}
