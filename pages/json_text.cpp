#include "pages/json_text.h"

#include "gx/text/characters.h"

void kv_json_text::add_raw(std::string_view json) {
  separate();
  text.append(json);
}

void kv_json_text::add(std::string_view words) {
  separate();
  const auto escape = [this](char32_t unit) {
    constexpr char digits[] = "0123456789abcdef";
    text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) text += digits[unit >> shift & 0xF];
  };
  text += '"';
  for (const char32_t code : gx_characters(words)) {
    if (code == '"' || code == '\\') {
      text += '\\';
      text += static_cast<char>(code);
    } else if (code >= 0x20 && code < 0x7F) {
      text += static_cast<char>(code);
    } else if (code < 0x10000) {
      escape(code);
    } else {  // as two units
      escape(0xD800 + ((code - 0x10000) >> 10));
      escape(0xDC00 + (code & 0x3FF));
    }
  }
  text += '"';
}
