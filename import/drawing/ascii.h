// Texts of other editors in the characters that a GX file can hold.
#pragma once

#include <string>
#include <string_view>

// UTF-8 in printable ASCII: letters with marks lose them, Greek letters and signs become words
// ("ohm", "u" for micro), dashes and quotes their plain forms, anything else "?". Bytes that are no
// UTF-8 are taken as Latin-1; control characters but newlines become blanks.
std::string gxi_ascii(std::string_view text);

// A name of a directory: letters, digits, "_", "-", "+" and "." kept, the rest "_".
std::string gxi_directory_name(std::string_view text);
