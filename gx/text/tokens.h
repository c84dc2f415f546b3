// The small tokenizer of the command language and of link files. Positions count from 1.
#pragma once

#include <cstdint>
#include <string_view>

#include "gx/text/records.h"

// Skips, from `pos`, every character of `set`; returns the first character outside it and leaves
// `pos` on it (0 when the string ends first).
char gx_findchar(const gx_string_record_t& string, std::string_view set, std::int32_t& pos);

// The next token: separators are skipped; a token that begins with a quote runs to the same quote
// (both included). Nothing, and false, when `pos` is outside 1..200 or past the length.
bool gx_rd_string_t(const gx_string_record_t& string, std::string_view set,
                    gx_string_record_t& token, std::int32_t& pos);
