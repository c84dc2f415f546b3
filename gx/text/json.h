// Texts in JSON.
#pragma once

#include <string>
#include <string_view>

// Appends the text in quotes. A byte that is no printable ASCII is told as the character of its
// number, so that any text of a design gives JSON that can be read.
void gx_append_json(std::string& json, std::string_view text);
