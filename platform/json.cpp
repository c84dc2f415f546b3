#include "platform/json.h"

void x_append_json(std::string& json, std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  json += '"';
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      json += '\\';
      json += c;
    } else if (code < 32 || code > 126) {
      json += "\\u00";
      json += digits[code >> 4U];
      json += digits[code & 15U];
    } else {
      json += c;
    }
  }
  json += '"';
}
