#include "gx/text/kept_text.h"

#include <algorithm>
#include <charconv>

#include "gx/text/characters.h"

namespace {

constexpr std::string_view head = "\\u{";

struct sign_t {
  char32_t code = 0;
  std::size_t length = 0;  // as kept; 0: it is none
};

// The sign that a kept text begins with.
sign_t sign_at(std::string_view kept) {
  constexpr std::size_t least = 2, most = 6;
  if (!kept.starts_with(head)) return {};
  const std::size_t end = kept.substr(0, head.size() + most + 1).find('}');
  if (end == kept.npos || end - head.size() < least) return {};
  std::uint32_t code = 0;
  const auto [rest, error] = std::from_chars(&kept[head.size()], &kept[end], code, 16);
  if (error != std::errc() || rest != &kept[end] || code < ' ' || code > 0x10FFFF ||
      (code >= 0xD800 && code < 0xE000))
    return {};
  return {code, end + 1};
}

void append_sign(char32_t code, std::string& kept) {
  char digits[8];
  const auto end = std::to_chars(digits, digits + sizeof digits, std::uint32_t{code}, 16).ptr;
  kept += head;
  for (const char* digit = digits; digit != end; ++digit)
    kept += *digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit;
  kept += '}';
}

}  // namespace

std::string gx_kept_text(std::string_view text) {
  std::string kept;
  kept.reserve(text.size());
  while (!text.empty()) {
    const bool is_sign = sign_at(text).length > 0;
    const char32_t code = gx_take_character(text);
    if (is_sign || code >= 0xA0)
      append_sign(code, kept);
    else if (code == '\n' || (code >= ' ' && code <= '~'))
      kept += static_cast<char>(code);
    else
      kept += ' ';
  }
  return kept;
}

std::string gx_shown_text(std::string_view kept) {
  std::string shown;
  shown.reserve(kept.size());
  while (!kept.empty()) {
    const sign_t sign = sign_at(kept);
    const std::size_t plain = sign.length > 0 ? 0 : std::min(kept.find('\\', 1), kept.size());
    shown += kept.substr(0, plain);
    if (sign.length > 0) gx_append_utf8(shown, sign.code);
    kept.remove_prefix(plain + sign.length);
  }
  return shown;
}

std::string gx_plain_text(std::string_view kept) {
  return gx_has_signs(kept) ? gx_ascii(gx_shown_text(kept)) : std::string(kept);
}

bool gx_has_signs(std::string_view kept) { return kept.find(head) != kept.npos; }

std::size_t gx_shown_length(std::string_view kept) {
  return gx_has_signs(kept) ? gx_characters(gx_shown_text(kept)).size() : kept.size();
}

std::size_t gx_kept_place(std::string_view kept, std::size_t shown) {
  std::size_t at = 0;
  for (; shown > 0 && at < kept.size(); --shown)
    at += std::max<std::size_t>(sign_at(kept.substr(at)).length, 1);
  return at;
}
