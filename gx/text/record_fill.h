// How the text records are written: one way for all three kinds. Private to this room.
#pragma once

#include <cstring>
#include <string_view>

#include "gx/text/records.h"

constexpr bool gx_printable(char c) { return c >= 32 && c <= 126; }

// Sets length and characters; the caller has checked that they fit. `text` may lie in the record.
template <typename Record>
void gx_fill(Record& record, std::string_view text) {
  if (!text.empty()) std::memmove(record.char_, text.data(), text.size());
  record.len = static_cast<std::int32_t>(text.size());
  if (text.size() < sizeof record.char_) record.char_[text.size()] = 0;
}
