#include "gx/text/tokens.h"

#include <algorithm>

#include "gx/text/at.h"
#include "gx/text/strings.h"

namespace {
bool is_in(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }
}  // namespace

char gx_findchar(const gx_string_record_t& string, std::string_view set, std::int32_t& pos) {
  const std::string_view text = gx_view(string);
  const auto end = static_cast<std::int32_t>(text.size());
  for (; pos >= 1 && pos <= end; ++pos) {
    const char c = gx_at(text, pos - 1);
    if (!is_in(set, c)) return c;
  }
  return 0;
}

bool gx_rd_string_t(const gx_string_record_t& string, std::string_view set,
                    gx_string_record_t& token, std::int32_t& pos) {
  const std::string_view text = gx_view(string).substr(0, gx_max_string_length);
  const auto end = static_cast<std::int32_t>(text.size());
  if (pos < 1 || pos > end) return false;

  const char first = gx_findchar(string, set, pos);
  const auto start = static_cast<std::size_t>(std::min(pos - 1, end));
  std::string_view word;
  if ((first == '\'' || first == '"') && pos < end) {
    const std::size_t closing = text.find(first, start + 1);
    if (closing != std::string_view::npos) {
      word = text.substr(start, closing + 1 - start);
      pos = static_cast<std::int32_t>(closing) + 2;
    } else {
      word = text.substr(start);
      word.remove_suffix(word.size() - 1 - word.find_last_not_of(' '));
      pos = end + 1;
    }
  } else {
    const std::size_t stop = std::min(text.find_first_of(set, start), text.size());
    word = text.substr(start, stop - start);
    pos = static_cast<std::int32_t>(stop) + 1;
  }
  gx_copy_string(word.substr(0, gx_max_string_length - 1), token);
  return true;
}
