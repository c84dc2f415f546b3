// Texts as JSON has them.
#pragma once

#include <string>
#include <string_view>

// Appends a text between quotes. It is pure ASCII: a byte that is not printable ASCII stands as
// "\u00xx", so that texts in Latin-1 come out as they are and every other byte can be recovered.
void x_append_json(std::string& json, std::string_view text);
