// Words of a line, and what each may hold.
#include "deck/line.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "deck/letters.h"
#include "gx/text/strings.h"

namespace {

using kind_t = dk_piece_t::kind_t;

// Ends at a blank that is in no quotes, braces or parentheses, or at `=` in none.
std::size_t word_length(std::string_view text) {
  int depth = 0;
  char quote = '\0';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
      continue;
    }
    if (c == '\'' || c == '"') quote = c;
    depth += (c == '(' || c == '{') - (c == ')' || c == '}');
    if (depth <= 0 && dk_is_blank(c)) return i;
    if (depth <= 0 && c == '=') return i == 0 ? 1 : i;
  }
  return text.size();
}

bool is_name(std::string_view word) {
  return !word.empty() && dk_begins_name(word.front()) &&
         std::ranges::all_of(word, [](char c) { return dk_begins_name(c) || dk_is_digit(c); });
}

class compiler {
 public:
  explicit compiler(std::string_view line) : text_(line) {}

  dk_line_t run() {
    skip();
    const auto end = std::min(text_.find_first_of(" \t"), text_.size());
    line_.name = text_.substr(0, end);
    text_.remove_prefix(end);
    letter_ = line_.name.empty() ? '\0' : gx_upper_case(line_.name.front());
    for (skip(); !text_.empty(); skip()) take_word();
    // Pieces of text that follow one another are one.
    std::vector<dk_piece_t> joined;
    for (auto& piece : line_.pieces)
      if (piece.kind == kind_t::text && !joined.empty() && joined.back().kind == kind_t::text)
        joined.back().text += piece.text;
      else
        joined.push_back(std::move(piece));
    line_.pieces = std::move(joined);
    return std::move(line_);
  }

 private:
  void skip() {
    while (!text_.empty() && dk_is_blank(text_.front())) text_.remove_prefix(1);
  }
  bool comes_equals() const {
    const auto next = text_.find_first_not_of(" \t");
    return next != text_.npos && text_[next] == '=';
  }
  void put(std::string_view text) {
    if (!text.empty()) line_.pieces.push_back({.text = std::string(text)});
  }

  void take_word() {
    const auto word = text_.substr(0, word_length(text_));
    text_.remove_prefix(word.size());
    put(is_value_ && word != "=" && glued_ ? "" : " ");
    glued_ = false;
    if (word == "=") return take_equals();
    ++place_;
    const bool is_value = is_value_;
    is_value_ = false;
    if (is_value || word.front() == '{' || word.front() == '\'' ||
        (word.front() == '"' && word.size() > 1)) {
      put_expression(word);
      if (is_value && !line_.given.empty()) line_.pieces.back().of = line_.given.back();
    } else if (names_device() && is_name(word)) {
      line_.pieces.push_back({.kind = kind_t::device, .text = std::string(word)});
    } else if (is_name(word) && !comes_equals()) {
      line_.pieces.push_back({.kind = kind_t::parameter, .text = std::string(word)});
    } else if (const auto open = word.find('('); open != word.npos && open > 0) {
      put_expression(word);
    } else {
      put_text(word);
    }
  }

  // After it comes a value; all of the rest where the source is given by an expression.
  void take_equals() {
    if (!line_.pieces.empty() && line_.pieces.back().text == " ") line_.pieces.pop_back();
    if (!line_.pieces.empty()) line_.given.push_back(line_.pieces.back().text);
    put("=");
    skip();
    if (letter_ == 'B' && place_ == 3) {
      put_expression(text_);
      text_ = {};
      return;
    }
    is_value_ = glued_ = true;
  }

  // Words that name other devices: what senses a current, what is coupled.
  bool names_device() const {
    switch (letter_) {
      case 'F':
      case 'H':
      case 'W':
        return place_ == 3;
      case 'K':
        return true;
      default:
        return false;
    }
  }

  void put_expression(std::string_view word) {
    dk_piece_t piece{.kind = kind_t::expression};
    if (word.size() > 1 && (word.front() == '\'' || word.front() == '"' || word.front() == '{') &&
        word.back() == (word.front() == '{' ? '}' : word.front())) {
      piece.quote = word.front();
      word = word.substr(1, word.size() - 2);
    }
    piece.text = word;
    line_.pieces.push_back(std::move(piece));
  }

  // Text with pins and signs.
  void put_text(std::string_view word) {
    while (!word.empty()) {
      const auto at = word.find('@');
      put(word.substr(0, at));
      if (at == std::string_view::npos) return;
      word.remove_prefix(at + 1);
      int pin = 0;
      const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), pin);
      if (error == std::errc() && pin > 0) {
        line_.pieces.push_back({.kind = kind_t::pin, .text = {}, .pin = pin});
        word.remove_prefix(static_cast<std::size_t>(end - word.data()));
      } else {
        put("@");
        word.remove_prefix(word.starts_with('@') ? 1 : 0);
      }
    }
  }

  std::string_view text_;
  dk_line_t line_;
  char letter_ = '\0';
  int place_ = 0;  // words after the name
  bool is_value_ = false, glued_ = false;
};

bool has_name(std::string_view text) {
  bool found = false;
  dk_names_t names;
  names.parameter = [&](std::string_view) {
    found = true;
    return std::optional<std::string>();
  };
  names.pin = [&](int, std::string&) { found = true; };
  names.node = names.device = [&](std::string_view name) {
    found = true;
    return std::string(name);
  };
  dk_substitute(text, names);
  return found;
}

}  // namespace

std::vector<dk_line_t> dk_compile(std::string_view lines) {
  std::vector<dk_line_t> compiled;
  while (!lines.empty()) {
    const auto end = std::min(lines.find('\n'), lines.size());
    if (end > 0) compiled.push_back(compiler(lines.substr(0, end)).run());
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
  for (auto& line : compiled)
    for (auto& piece : line.pieces) {
      // What no use changes is worked out once.
      if (piece.kind != kind_t::expression || has_name(piece.text)) continue;
      std::string text;
      dk_put(piece, {}, text);
      piece = {.text = std::move(text)};
    }
  return compiled;
}

void dk_put(const dk_piece_t& piece, const dk_names_t& names, std::string& out) {
  if (piece.kind == kind_t::parameter) {
    const auto value = names.parameter(piece.text);
    out +=
        value ? (dk_number(*value) || is_name(*value) ? *value : "{" + *value + "}") : piece.text;
    return;
  }
  const std::string text = dk_substitute(piece.text, names);
  if (dk_number(text) || (text == piece.text && piece.quote == '\0')) {
    out += text;
    return;
  }
  if (const auto number = dk_evaluate(text)) {
    out += dk_number_text(*number);
    return;
  }
  // Without quotes it stays so where it is a word, a list, or the rest of a line.
  out += piece.quote == '\0' ? "" : std::string(1, piece.quote);
  out += text;
  out += piece.quote == '\0' ? "" : std::string(1, piece.quote == '{' ? '}' : piece.quote);
}

std::string dk_value(std::string_view text, const dk_names_t& names) {
  if (text.size() > 1 && (text.front() == '\'' || text.front() == '"' || text.front() == '{'))
    text = text.substr(1, text.size() - 2);
  std::string value = dk_substitute(text, names);
  if (const auto number = dk_number(value) ? std::nullopt : dk_evaluate(value))
    return dk_number_text(*number);
  return value;
}
