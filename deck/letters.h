// Letters and lines of SPICE's texts.
#pragma once

#include <cctype>
#include <string_view>

inline bool dk_is_blank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
inline bool dk_is_digit(char c) { return c >= '0' && c <= '9'; }
inline bool dk_begins_name(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// The first line of the text, which loses it.
inline std::string_view dk_take_line(std::string_view& text) {
  const auto end = text.find('\n');
  const auto line = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return line;
}
