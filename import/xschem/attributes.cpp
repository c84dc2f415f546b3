// Splitting attributes and filling texts.
#include "import/xschem/attributes.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace {
bool is_of_name(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

// The end of the name after an "@": NAME, @PIN, #3 or #3:ATTRIBUTE.
std::size_t end_of_name(std::string_view text, std::size_t at) {
  const auto take = [&](bool (*belongs)(char)) {
    while (at < text.size() && belongs(text[at])) ++at;
  };
  const std::size_t start = at;
  if (at < text.size() && text[at] == '#') {
    ++at;
    take(is_of_name);
    if (at < text.size() && text[at] == ':') take([](char c) { return is_of_name(c) || c == ':'; });
    return at;
  }
  if (at < text.size() && text[at] == '@') ++at;
  take(is_of_name);
  return at == start + 1 && text[start] == '@' ? start : at;
}
}  // namespace

bool gxi_xschem_is_blank(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

gxi_xschem_attributes_t::gxi_xschem_attributes_t(std::string_view text) {
  std::size_t at = 0;
  const auto skip_blanks = [&] {
    while (at < text.size() && gxi_xschem_is_blank(text[at])) ++at;
  };
  while (true) {
    skip_blanks();
    if (at >= text.size()) return;
    const std::size_t start = at;
    while (at < text.size() && text[at] != '=' && !gxi_xschem_is_blank(text[at])) ++at;
    const std::string name(text.substr(start, at - start));
    skip_blanks();
    if (at >= text.size() || text[at] != '=') continue;  // a word alone
    ++at;
    skip_blanks();
    std::string value;
    for (bool quoted = false; at < text.size() && (quoted || !gxi_xschem_is_blank(text[at]));
         ++at) {
      if (text[at] == '"') {
        quoted = !quoted;
      } else {
        if (text[at] == '\\' && at + 1 < text.size()) ++at;
        value += text[at];
      }
    }
    if (find(name) == nullptr && !name.empty()) list_.emplace_back(name, std::move(value));
  }
}

const std::string* gxi_xschem_attributes_t::find(std::string_view name) const {
  const auto found = std::find_if(list_.begin(), list_.end(),
                                  [&](const auto& entry) { return entry.first == name; });
  return found == list_.end() ? nullptr : &found->second;
}

std::string_view gxi_xschem_attributes_t::get(std::string_view name) const {
  const auto* const value = find(name);
  return value != nullptr ? std::string_view(*value) : std::string_view();
}

bool gxi_xschem_attributes_t::is_set(std::string_view name) const {
  constexpr auto unset = std::to_array<std::string_view>({"", "0", "false", "no", "off"});
  return std::find(unset.begin(), unset.end(), get(name)) == unset.end();
}

std::string gxi_xschem_substitute(std::string_view text,
                                  const std::function<std::string(std::string_view)>& value) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '\\') {
      // Two backslashes part a name from what follows.
      while (at < text.size() && text[at] == '\\') ++at;
      if (at < text.size() && text[at] == '@') result += text[at++];
      continue;
    }
    if (text[at] != '@') {
      result += text[at++];
      continue;
    }
    const std::size_t end = end_of_name(text, at + 1);
    if (end == at + 1) {
      result += text[at++];
      continue;
    }
    result += value(text.substr(at + 1, end - at - 1));
    at = end;
  }
  return result;
}
