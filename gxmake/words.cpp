// Reading words: numbers, points, ranges, colours, stops of wires.
#include "gxmake/words.h"

#include <charconv>
#include <cmath>
#include <utility>

#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

std::optional<double> number(std::string_view word) {
  if (!word.empty() && word[0] == '+') word.remove_prefix(1);
  double value = 0;
  const auto [end, error] =
      std::from_chars(word.data(), word.data() + word.size(), value, std::chars_format::fixed);
  if (word.empty() || error != std::errc() || end != word.data() + word.size()) return std::nullopt;
  return value;
}

// The two halves of a word around the first `c`.
std::optional<std::pair<std::string_view, std::string_view>> halves(std::string_view word, char c) {
  const auto at = word.find(c);
  if (at == std::string_view::npos) return std::nullopt;
  return std::pair(word.substr(0, at), word.substr(at + 1));
}

constexpr std::string_view color_names[] = {"black", "red",    "green",   "blue",
                                            "cyan",  "yellow", "magenta", "white"};

}  // namespace

std::optional<std::vector<std::string>> gxm_split_words(std::string_view line) {
  std::vector<std::string> words;
  char quote = 0;
  bool inside = false;
  for (const char c : line) {
    if (quote) {
      if (c == quote)
        quote = 0;
      else
        words.back() += c;
      continue;
    }
    if (c == ' ' || c == '\t' || c == '\r') {
      inside = false;
      continue;
    }
    if (c == '#' && !inside) break;
    if (!inside) words.emplace_back();
    inside = true;
    if (c == '"' || c == '\'')
      quote = c;
    else
      words.back() += c;
  }
  if (quote) return std::nullopt;
  return words;
}

std::optional<std::int32_t> gxm_length(std::string_view word) {
  const auto steps = number(word);
  if (!steps || std::abs(*steps) * gxm_step > gxm_furthest) return std::nullopt;
  return static_cast<std::int32_t>(std::lround(*steps * gxm_step));
}

std::optional<gx_pointreal_t> gxm_point(std::string_view word) {
  const auto parts = halves(word, ',');
  if (!parts) return std::nullopt;
  const auto x = gxm_length(parts->first), y = gxm_length(parts->second);
  if (!x || !y) return std::nullopt;
  return gx_pointreal_t{*x, *y};
}

std::optional<int> gxm_integer(std::string_view word, int least, int most) {
  const auto value = gx_whole_number<int>(word);
  return value && *value >= least && *value <= most ? value : std::nullopt;
}

std::optional<gxm_range_t> gxm_range(std::string_view word) {
  const auto parts = halves(word, ':');
  if (!parts) return std::nullopt;
  const auto start = gxm_integer(parts->first, 0, 9999), end = gxm_integer(parts->second, 0, 9999);
  if (!start || !end || *end < *start) return std::nullopt;
  return gxm_range_t{static_cast<std::int16_t>(*start), static_cast<std::int16_t>(*end)};
}

std::optional<std::uint8_t> gxm_color_named(std::string_view word) {
  for (std::uint8_t i = 0; i < std::size(color_names); ++i)
    if (gx_iden(word, color_names[i])) return i;
  return std::nullopt;
}

std::optional<gxm_stop_t> gxm_stop(std::string_view word) {
  gxm_stop_t stop;
  if (const auto of_net = halves(word, '@')) {
    stop.net = of_net->first;
    const auto place = gxm_point(of_net->second);
    if (stop.net.empty() || !place) return std::nullopt;
    stop.x = place->x;
    stop.y = place->y;
    return stop;
  }
  if (const auto place = halves(word, ',')) {
    if (place->first != ".") stop.x = gxm_length(place->first);
    if (place->second != ".") stop.y = gxm_length(place->second);
    if ((place->first != "." && !stop.x) || (place->second != "." && !stop.y)) return std::nullopt;
    if (!stop.x && !stop.y) return std::nullopt;
    return stop;
  }
  const auto pin = halves(word, '.');
  stop.part = pin ? pin->first : word;
  if (pin) stop.pin = pin->second;
  if (stop.part.empty() || (pin && stop.pin.empty())) return std::nullopt;
  return stop;
}

std::optional<gxm_assignment_t> gxm_assignment(std::string_view word) {
  const auto parts = halves(word, '=');
  if (!parts || parts->first.empty()) return std::nullopt;
  return gxm_assignment_t{std::string(parts->first), std::string(parts->second)};
}
