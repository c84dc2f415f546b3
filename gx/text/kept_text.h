// Values and notes with characters that a GX file cannot hold.
//
// A file keeps printable ASCII. Any other character of a text that is shown is kept as
// \u{HEX}, its number in hexadecimal digits, at least two and at most six: "10µ" as "10\u{B5}". A
// backslash that would begin such a sign stands as \u{5C}, so that every text comes back as it was.
// Names are not kept this way: they have a spelling of their own (gx/text/spelling.h).
#pragma once

#include <string>
#include <string_view>

// A text in UTF-8 (else Latin-1) as a file keeps it; newlines stay, other control characters become
// blanks.
std::string gx_kept_text(std::string_view text);
// And back: UTF-8, for the eyes of a user. What is no such sign stays.
std::string gx_shown_text(std::string_view kept);
// The same in plain letters, for netlists: "10u".
std::string gx_plain_text(std::string_view kept);
// Whether the last two are anything else than the kept text.
bool gx_has_signs(std::string_view kept);
// How many characters the shown text has.
std::size_t gx_shown_length(std::string_view kept);
// Where in the kept text the character at that place (from 0) of the shown text begins; the size of
// the kept text where it shows no more.
std::size_t gx_kept_place(std::string_view kept, std::size_t shown);
