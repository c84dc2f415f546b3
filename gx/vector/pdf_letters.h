// Texts in the fonts that every reader of PDF has: Courier for Latin letters, Symbol for Greek ones
// and signs of mathematics.
#pragma once

#include <string>
#include <string_view>

// The operators that show a text in the font /F, which is set, and leave it set; `size` is that of
// /F and /G, the fonts Courier with WinAnsiEncoding and Symbol. Every letter is as wide as one of
// Courier. What neither font has is shown as "?", and found and copied as what it is.
std::string gx_pdf_shown(std::string_view text, std::string_view size);
