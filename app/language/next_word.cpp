#include "app/language/next_word.h"

#include <algorithm>

#include "app/language/command_table.h"
#include "gx/text/strings.h"

namespace {
// The words that a syntax line allows at one place.
using place_t = std::vector<std::string_view>;

struct syntax_t {
  std::vector<place_t> places{};
  bool repeats = false;  // the last one
};

syntax_t read_syntax(std::string_view line) {
  syntax_t syntax;
  bool is_alternative = false;
  while (!line.empty()) {
    std::string_view word = line.substr(0, line.find(' '));
    line.remove_prefix(std::min(word.size() + 1, line.size()));
    while (word.starts_with('[')) word.remove_prefix(1);
    while (word.ends_with(']')) word.remove_suffix(1);
    if (word == "or") {
      is_alternative = true;
    } else if (word == "...") {
      syntax.repeats = true;
    } else {
      if (!is_alternative || syntax.places.empty()) syntax.places.emplace_back();
      syntax.places.back().push_back(word);
      is_alternative = false;
    }
  }
  return syntax;
}

// Other words stand for a value.
bool is_keyword(std::string_view word) { return word.front() >= 'A' && word.front() <= 'Z'; }

const place_t* place_at(const syntax_t& syntax, std::size_t index) {
  if (index < syntax.places.size()) return &syntax.places[index];
  return syntax.repeats && !syntax.places.empty() ? &syntax.places.back() : nullptr;
}

bool goes_on(const kv_command_row_t& row, const syntax_t& syntax,
             std::span<const std::string> before) {
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (i < row.keywords.size() && !row.keywords[i].empty()) {
      if (!gx_equal(row.keywords[i], before[i])) return false;
      continue;
    }
    const place_t* const place = place_at(syntax, i);
    if (place == nullptr) return false;
    const bool fits = std::ranges::any_of(*place, [&](std::string_view word) {
      return !is_keyword(word) || gx_equal(before[i], word);
    });
    if (!fits) return false;
  }
  return true;
}

// Its "path" or "name" is one of the file system.
bool names_a_file(const kv_command_row_t& row) {
  const auto is = [&](std::string_view first, std::string_view second) {
    return row.keywords[0] == first && row.keywords[1] == second;
  };
  return row.keywords[1] == "FIL" || is("ACT", "SYM") || is("VIE", "SHE") || is("SEA", "");
}
}  // namespace

kv_wanted_word_t kv_wanted_word(std::span<const std::string> before) {
  kv_wanted_word_t wanted;
  for (const kv_command_row_t& row : kv_command_table()) {
    if (row.syntax.starts_with('$')) continue;
    const syntax_t syntax = read_syntax(row.syntax);
    const place_t* const place = place_at(syntax, before.size());
    if (place == nullptr || !goes_on(row, syntax, before)) continue;
    for (const std::string_view word : *place) {
      const bool is_path = word == "path" || word == "block";
      if (is_keyword(word)) wanted.keywords.push_back(word);
      wanted.is_path |= is_path && !names_a_file(row);
      wanted.is_block |= word == "instance" && row.keywords[0] == "VIE";
      wanted.is_file |= word == "file" || ((is_path || word == "name") && names_a_file(row));
    }
  }
  return wanted;
}
