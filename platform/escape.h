// Texts of a design as a terminal may get them.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// The text with every character that is not printable ASCII as "\x1b".
inline std::string x_escaped(std::string_view text) {
  const auto printable = [](char c) { return c >= ' ' && c <= '~'; };
  if (std::all_of(text.begin(), text.end(), printable)) return std::string(text);
  constexpr char digits[] = "0123456789abcdef";
  std::string escaped;
  for (const char c : text) {
    if (printable(c)) {
      escaped += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    escaped.append("\\x").append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
  }
  return escaped;
}
