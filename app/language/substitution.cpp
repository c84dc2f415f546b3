#include "app/language/substitution.h"

#include <algorithm>
#include <string>

#include "gx/text/at.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {
constexpr std::string_view variable_letters = "$VAR";
constexpr int max_number = 30;

bool is_digit(std::string_view text, std::size_t at) {
  return at < text.size() && text[at] >= '0' && text[at] <= '9';
}

}  // namespace

kv_substitution_t kv_substitute(const gx_string_record_t& text, std::string_view letters,
                                const kv_array_param_t& values) {
  kv_substitution_t result;
  std::string piece(gx_view(text));
  for (std::size_t at = piece.find('$'); at != std::string::npos; at = piece.find('$', at)) {
    const std::size_t digits_at = at + letters.size();
    if (!gx_equal(letters, std::string_view(piece).substr(at)) || !is_digit(piece, digits_at)) {
      ++at;
      continue;
    }
    const std::size_t digits = is_digit(piece, digits_at + 1) ? 2 : 1;
    const int number = gx_string_to_int16(std::string_view(piece).substr(digits_at, digits)).value;
    if (number < 1 || number > max_number) {
      result.valid = false;
      break;
    }
    const auto value = gx_view(gx_at(values, number - 1));
    piece.replace(at, letters.size() + digits, value);
    piece.resize(std::min<std::size_t>(piece.size(), gx_max_string_length - 1));
    at = std::min(at + value.size(), piece.size());
  }
  result.text = gx_string(piece);
  return result;
}

kv_target_t kv_variable_target(std::string_view word) {
  const std::size_t digits_at = variable_letters.size();
  if (!gx_equal(variable_letters, word)) return {};
  if (!is_digit(word, digits_at)) return {kv_target::no_digit, 0};
  const std::size_t digits = word.size() - digits_at;
  if (digits > 2 || (digits == 2 && !is_digit(word, digits_at + 1)))
    return {kv_target::other_shape, 0};
  const int number = gx_string_to_int16(word.substr(digits_at, digits)).value;
  if (number < 1 || number > max_number) return {kv_target::out_of_range, 0};
  return {kv_target::variable, number};
}
