// Quotes, braces, brackets.
#include "import/xschem/tcl/tcl_words.h"

#include <algorithm>

#include "import/xschem/attributes.h"

namespace {
bool is_of_variable(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
}  // namespace

std::vector<gxi_xschem_tcl_word_t> gxi_xschem_tcl_commands_t::next() {
  std::vector<gxi_xschem_tcl_word_t> words;
  while (at_ < text_.size()) {
    const char c = text_[at_];
    if (c == '\n' || c == ';') {
      step();
      if (!words.empty()) return words;
    } else if (gxi_xschem_is_blank(c)) {
      step();
    } else if (c == '\\' && at_ + 1 < text_.size() && text_[at_ + 1] == '\n') {
      step();
      step();
    } else if (c == '#' && words.empty()) {
      while (at_ < text_.size() && text_[at_] != '\n') skip();
    } else {
      words.push_back(word());
    }
  }
  return words;
}

// A sign, or what a backslash hides.
void gxi_xschem_tcl_commands_t::skip() {
  if (text_[at_] == '\\' && at_ + 1 < text_.size()) step();
  step();
}

void gxi_xschem_tcl_commands_t::skip_closed(char open, char close) {
  int depth = 0;
  while (at_ < text_.size()) {
    depth += text_[at_] == open ? 1 : text_[at_] == close ? -1 : 0;
    skip();
    if (depth == 0) return;
  }
}

gxi_xschem_tcl_word_t gxi_xschem_tcl_commands_t::word() {
  const int line = line_;
  const auto first = at_;
  const char open = text_[at_];
  if (open == '{') {
    skip_closed('{', '}');
    return inner(first, true, line);
  }
  if (open == '"') {
    step();
    while (at_ < text_.size() && text_[at_] != '"') part();
    if (at_ < text_.size()) step();
    return inner(first, false, line);
  }
  while (at_ < text_.size() && !gxi_xschem_is_blank(text_[at_]) && text_[at_] != ';') part();
  return {text_.substr(first, at_ - first), false, line};
}

// A sign, brackets or the name of a variable in braces.
void gxi_xschem_tcl_commands_t::part() {
  if (text_[at_] == '[')
    skip_closed('[', ']');
  else if (text_.substr(at_, 2) == "${")
    while (at_ < text_.size() && text_[at_] != '}') step();
  else
    skip();
}

gxi_xschem_tcl_word_t gxi_xschem_tcl_commands_t::inner(std::size_t first, bool braced,
                                                       int line) const {
  const auto length = at_ - first;
  return {length < 2 ? std::string_view() : text_.substr(first + 1, length - 2), braced, line};
}

std::size_t gxi_xschem_tcl_closed(std::string_view text, char open, char close) {
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') {
      ++i;
      continue;
    }
    depth += text[i] == open;
    if (text[i] == close && --depth == 0) return i + 1;
  }
  return std::string_view::npos;
}

std::string gxi_xschem_tcl_variable(std::string_view& text) {
  text.remove_prefix(1);
  std::string name;
  if (text.starts_with("{")) {
    const auto end = std::min(text.find('}'), text.size());
    name = text.substr(1, end - 1);
    text.remove_prefix(std::min(end + 1, text.size()));
    return name;
  }
  while (text.starts_with("::")) text.remove_prefix(2);
  std::size_t end = 0;
  while (end < text.size() && is_of_variable(text[end])) ++end;
  if (end > 0 && end < text.size() && text[end] == '(')
    end = std::min(text.find(')', end), text.size() - 1) + 1;
  name = text.substr(0, end);
  text.remove_prefix(end);
  return name;
}
