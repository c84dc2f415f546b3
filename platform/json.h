// Texts as others may get them: JSON, a terminal.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// Appends a text between quotes. It is pure ASCII: a byte that is not printable ASCII stands as
// "\u00xx", so that texts in Latin-1 come out as they are and every other byte can be recovered.
void x_append_json(std::string& json, std::string_view text);

// For a terminal: the text with every character that is not printable ASCII as "\x1b".
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
