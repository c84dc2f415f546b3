#include "import/kicad/net_names.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace {

constexpr std::pair<std::string_view, char> escapes[] = {
    {"slash", '/'},  {"backslash", '\\'}, {"colon", ':'}, {"dblquote", '"'}, {"quote", '\''},
    {"lt", '<'},     {"gt", '>'},         {"bar", '|'},   {"space", ' '},    {"tab", '\t'},
    {"return", ' '}, {"amp", '&'},        {"brace", '{'},
};
constexpr int most_groups_deep = 8;

struct vector_t {
  std::string_view prefix{}, suffix{};
  int from = -1, to = -1;
};

// Whether the brace opens a bar or a script: "~{", "^{", "_{".
bool is_mark(std::string_view text, std::size_t brace) {
  return brace > 0 && std::string_view("~^_").find(text[brace - 1]) != std::string_view::npos;
}

bool has_blank(std::string_view text) {
  return text.find_first_of(" \t") != std::string_view::npos;
}

std::optional<vector_t> vector_of(std::string_view name) {
  const auto open = name.rfind('[');
  if (open == std::string_view::npos || open == 0) return {};
  const auto dots = name.find("..", open), close = name.find(']', open);
  if (dots == std::string_view::npos || close == std::string_view::npos || close < dots) return {};
  if (has_blank(name.substr(0, open))) return {};
  vector_t vector{.prefix = name.substr(0, open), .suffix = name.substr(close + 1)};
  for (std::size_t i = 0; i < open; ++i)
    if (name[i] == '{' && !is_mark(name, i)) return {};
  // What follows closes a bar or script that the prefix opened.
  if (vector.suffix.find_first_not_of('}') != std::string_view::npos) return {};
  const auto number = [&](std::size_t begin, std::size_t end) {
    const auto text = name.substr(begin, end - begin);
    int value = -1;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && stop == text.data() + text.size() ? value : -1;
  };
  vector.from = number(open + 1, dots);
  vector.to = number(dots + 2, close);
  if (vector.from < 0 || vector.to < 0) return {};
  if (vector.from > vector.to) std::swap(vector.from, vector.to);
  if (vector.to - vector.from >= gxi_kicad_most_members) return {};
  return vector;
}

void expand_vector(const vector_t& vector, std::string_view before, gxi_kicad_bus_t& bus) {
  for (int i = vector.from; i <= vector.to; ++i) {
    auto local = std::string(vector.prefix) + std::to_string(i) + std::string(vector.suffix);
    bus.members.push_back(std::string(before) + local);
    bus.local.push_back(std::move(local));
  }
}

// The words between the braces; braces within are of bars and scripts.
std::vector<std::string_view> words_of(std::string_view inside) {
  std::vector<std::string_view> words;
  int depth = 0;
  std::size_t begun = 0;
  for (std::size_t i = 0; i <= inside.size(); ++i) {
    const bool ends = i == inside.size() ||
                      (depth == 0 && (inside[i] == ' ' || inside[i] == ',' || inside[i] == '\t'));
    if (!ends) {
      depth += inside[i] == '{' ? 1 : inside[i] == '}' ? -1 : 0;
      continue;
    }
    if (i > begun) words.push_back(inside.substr(begun, i - begun));
    begun = i + 1;
  }
  return words;
}

// A bar above a member is no part of its name: a label must be written without it to join.
std::string without_bars(std::string_view word) {
  std::string plain;
  int bars = 0;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word.substr(i, 2) == "~{") {
      ++bars;
      ++i;
    } else if (bars > 0 && word[i] == '}') {
      --bars;
    } else {
      plain += word[i];
    }
  }
  return plain;
}

void expand_group(std::string_view inside, std::string_view before,
                  const gxi_kicad_aliases_t& aliases, int depth, gxi_kicad_bus_t& bus) {
  for (const auto written : words_of(inside)) {
    const auto word = without_bars(written);
    if (bus.members.size() >= gxi_kicad_most_members) return;
    const auto alias = aliases.find(word);
    if (alias != aliases.end()) {
      for (const auto& member : alias->second)
        if (depth < most_groups_deep) expand_group(member, before, aliases, depth + 1, bus);
    } else if (const auto vector = vector_of(word)) {
      expand_vector(*vector, before, bus);
    } else {
      bus.members.push_back(std::string(before) + word);
      bus.local.push_back(word);
    }
  }
}

}  // namespace

std::string gxi_kicad_unescaped(std::string_view name) {
  std::string plain;
  while (!name.empty()) {
    const auto close = name.front() == '{' ? name.find('}') : std::string_view::npos;
    const auto word =
        close == std::string_view::npos ? std::string_view() : name.substr(1, close - 1);
    const auto* const escape = std::find_if(std::begin(escapes), std::end(escapes),
                                            [&](const auto& one) { return one.first == word; });
    if (escape != std::end(escapes)) {
      plain += escape->second;
      name.remove_prefix(close + 1);
    } else {
      plain += name.front();
      name.remove_prefix(1);
    }
  }
  return plain;
}

gxi_kicad_bus_t gxi_kicad_bus(std::string_view name, const gxi_kicad_aliases_t& aliases) {
  gxi_kicad_bus_t bus;
  if (const auto vector = vector_of(name)) {
    bus.is_vector = true;
    expand_vector(*vector, {}, bus);
    return bus;
  }
  const auto open = name.find('{');
  if (open == std::string_view::npos || name.back() != '}' || is_mark(name, open)) return bus;
  if (has_blank(name.substr(0, open))) return bus;
  const std::string before = open == 0 ? std::string() : std::string(name.substr(0, open)) + ".";
  expand_group(name.substr(open + 1, name.size() - open - 2), before, aliases, 0, bus);
  return bus;
}
