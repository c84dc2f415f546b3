#include "deck/statements.h"

#include <array>

#include "deck/letters.h"
#include "gx/text/strings.h"

namespace {

using statement_kind_t = dk_statement_t::kind_t;

struct word_t {
  std::string_view word;
  statement_kind_t kind;
  std::string_view end;  // of a block
};
constexpr auto words = std::to_array<word_t>({
    {".par", statement_kind_t::parameter, {}},
    {".control", statement_kind_t::analysis, ".endc"},
    {".subckt", statement_kind_t::definition, ".ends"},
    {".ic", statement_kind_t::local, {}},
    {".nodeset", statement_kind_t::local, {}},
    {".save", statement_kind_t::local, {}},
    {".meas", statement_kind_t::local, {}},
    {".print", statement_kind_t::local, {}},
    {".plot", statement_kind_t::local, {}},
    {".probe", statement_kind_t::local, {}},
    {".four", statement_kind_t::local, {}},
    {".ac", statement_kind_t::analysis, {}},
    {".dc", statement_kind_t::analysis, {}},
    {".op", statement_kind_t::analysis, {}},
    {".tran", statement_kind_t::analysis, {}},
    {".noise", statement_kind_t::analysis, {}},
    {".tf", statement_kind_t::analysis, {}},
    {".sens", statement_kind_t::analysis, {}},
    {".pz", statement_kind_t::analysis, {}},
    {".disto", statement_kind_t::analysis, {}},
    {".sp", statement_kind_t::analysis, {}},
    {".end", statement_kind_t::analysis, {}},
});

std::string_view trimmed(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
  return line;
}

const word_t* find(std::string_view line) {
  // ".option" is no ".op".
  if (gx_equal(".opt", line)) return nullptr;
  for (const auto& known : words)
    if (gx_equal(known.word, line)) return &known;
  return nullptr;
}

}  // namespace

std::vector<dk_statement_t> dk_statements(std::string_view text) {
  std::vector<dk_statement_t> statements;
  std::string_view until;  // in a block: what ends it
  while (!text.empty()) {
    const auto whole = dk_take_line(text);
    const auto line = trimmed(whole);
    if (line.empty() || line.front() == '*') continue;
    if (!until.empty()) {
      statements.back().text.append(whole).append("\n");
      if (gx_equal(until, line)) until = {};
      continue;
    }
    if (line.front() == '+' && !statements.empty()) {
      statements.back().text.append(whole).append("\n");
      continue;
    }
    const auto* const known = find(line);
    statements.push_back(
        {known ? known->kind : statement_kind_t::definition, std::string(whole) + "\n"});
    if (known) until = known->end;
  }
  return statements;
}

std::vector<std::pair<std::string, std::string>> dk_parameters(std::string_view line) {
  std::vector<std::pair<std::string, std::string>> found;
  std::string text;
  while (!line.empty()) {
    auto part = trimmed(dk_take_line(line));
    if (part.starts_with('+')) part.remove_prefix(1);
    text.append(part).append(" ");
  }
  for (std::size_t at = 0; (at = text.find('=', at)) != std::string::npos;) {
    const auto last = at == 0 ? std::string::npos : text.find_last_not_of(" \t", at - 1);
    const auto first = text.find_last_of(" \t", last) + 1;
    auto begin = text.find_first_not_of(" \t", at + 1);
    if (last == std::string::npos || begin == std::string::npos) break;
    std::size_t end = begin;
    int depth = 0;
    char quote = '\0';
    for (; end < text.size(); ++end) {
      const char c = text[end];
      if (quote != '\0') {
        if (c == quote) quote = '\0';
        continue;
      }
      if (c == '\'' || c == '"') quote = c;
      depth += (c == '{' || c == '(') - (c == '}' || c == ')');
      if (depth <= 0 && quote == '\0' && (c == ' ' || c == '\t')) break;
    }
    found.emplace_back(text.substr(first, last + 1 - first), text.substr(begin, end - begin));
    at = end;
  }
  return found;
}
