// What a run tells the user: lines of the message list and the session's counters.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

// Shows the parts joined, as one line of the list.
void kv_tell_parts(std::span<const std::string_view> parts);
template <typename... Part>
void kv_tell(const Part&... part) {
  const std::string_view parts[] = {std::string_view(part)...};
  kv_tell_parts(parts);
}
// `label`, then `text` in double quotes, then `tail`.
inline void kv_tell_quoted(std::string_view label, std::string_view text,
                           std::string_view tail = {}) {
  kv_tell(label, "\"", text, "\"", tail);
}

// The counters of the session stop at their largest value.
void kv_count_error();
void kv_count_warning();
