// Characters beyond ASCII: UTF-8 and its plain forms.
#pragma once

#include <string>
#include <string_view>

// Takes the first character off a text that is not empty: of bytes that are no UTF-8, one byte as
// Latin-1.
char32_t gx_take_character(std::string_view& text);
std::u32string gx_characters(std::string_view text);
void gx_append_utf8(std::string& out, char32_t code);

// Printable ASCII that reads alike: letters with marks lose them, Greek letters and signs become
// words ("ohm", "u" for micro), dashes and quotes their plain forms, anything else "?". Control
// characters but newlines become blanks.
std::string gx_ascii(std::string_view text);
