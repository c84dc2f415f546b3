#include "gx/text/spelling.h"

#include <cstdint>
#include <vector>

namespace {

constexpr char bar = '~', escape = '%';
constexpr std::string_view digits = "0123456789ABCDEF";

bool stays(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         std::string_view("_+-#$&@=^|[]<>!.:*?").find(c) != std::string_view::npos;
}

void spell(char c, std::string& spelled) {
  if (stays(c)) {
    spelled += c;
    return;
  }
  const auto byte = static_cast<std::uint8_t>(c);
  spelled += escape;
  spelled += digits[byte / 16];
  spelled += digits[byte % 16];
}

bool is_number(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Where the bar that begins at "~{" ends: its "}"; npos when it has none, or a bar within.
std::size_t end_of_bar(std::string_view name, std::size_t at) {
  if (name.substr(at, 2) != "~{") return std::string_view::npos;
  const auto close = name.find('}', at);
  if (close == std::string_view::npos || close == at + 2) return std::string_view::npos;
  return name.substr(at + 2, close - at - 2).find('{') == std::string_view::npos
             ? close
             : std::string_view::npos;
}

}  // namespace

std::string gx_spelled_name(std::string_view drawn) {
  std::string spelled;
  std::size_t begin = 0, end = std::string_view::npos;
  for (std::size_t i = 0; i < drawn.size(); ++i) {
    if (i == end) {
      const bool is_last = i + 1 == drawn.size();
      if (!is_last || is_number(drawn.substr(begin, end - begin))) spelled += bar;
      end = std::string_view::npos;
    } else if (const auto close = end_of_bar(drawn, i); close != std::string_view::npos) {
      spelled += bar;
      end = close;
      begin = ++i + 1;
    } else {
      spell(drawn[i], spelled);
    }
  }
  return spelled;
}

std::string gx_drawn_name(std::string_view spelled) {
  std::string drawn;
  bool in_bar = false;
  for (std::size_t i = 0; i < spelled.size(); ++i) {
    const auto high = i + 2 < spelled.size() ? digits.find(spelled[i + 1]) : digits.npos;
    const auto low = i + 2 < spelled.size() ? digits.find(spelled[i + 2]) : digits.npos;
    if (spelled[i] == bar && !in_bar && is_number(spelled.substr(i + 1))) {
      drawn += spelled.substr(i);
      break;
    }
    if (spelled[i] == bar) {
      drawn += in_bar ? "}" : "~{";
      in_bar = !in_bar;
    } else if (spelled[i] == escape && high != digits.npos && low != digits.npos) {
      drawn += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      drawn += spelled[i];
    }
  }
  if (in_bar) drawn += '}';
  return drawn;
}
