#include "import/kicad/sexpr.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

#include "gx/text/at.h"

namespace {

constexpr std::size_t most_nodes = 100'000'000;
constexpr double units_of_millimetre = 10'000;  // 100 nm each, as the editor itself counts
constexpr double furthest_millimetres = 10'000;

[[noreturn]] void refuse_at(std::string_view name, int line, const std::string& what) {
  throw std::runtime_error(std::string(name) + ":" + std::to_string(line) + ": " + what);
}

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

}  // namespace

// Fills a tree from a text; lists that are open are a stack of their own.
class gxi_kicad_parser_t {
 public:
  gxi_kicad_parser_t(gxi_kicad_tree_t& tree, std::string_view text) : tree_(tree), text_(text) {}

  void run() {
    if (text_.starts_with("\xEF\xBB\xBF")) text_.remove_prefix(3);
    skip_blanks();
    if (text_.empty() || text_.front() != '(') refuse("no list begins here");
    do {
      take_one();
      skip_blanks();
    } while (!open_.empty());
    if (!text_.empty()) refuse("text after the last parenthesis");
  }

 private:
  struct open_t {
    int node = 0, last = -1;  // the list, and the last node in it
  };

  [[noreturn]] void refuse(const std::string& what) { refuse_at(tree_.name_, line_, what); }

  void advance() {
    line_ += text_.front() == '\n';
    text_.remove_prefix(1);
  }
  void skip_blanks() {
    while (!text_.empty() && is_blank(text_.front())) advance();
  }

  int add(std::string_view word, bool is_list) {
    if (tree_.nodes_.size() >= most_nodes) refuse("too many words");
    const int node = static_cast<int>(tree_.nodes_.size());
    tree_.nodes_.push_back({.word = word, .line = line_, .is_list = is_list});
    if (open_.empty()) return node;
    auto& list = open_.back();
    (list.last < 0 ? gx_at(tree_.nodes_, list.node).first : gx_at(tree_.nodes_, list.last).next) =
        node;
    list.last = node;
    return node;
  }

  void take_one() {
    if (text_.empty())
      refuse("the file ends early: the list of line " +
             std::to_string(gx_at(tree_.nodes_, open_.back().node).line) + " is open");
    const char c = text_.front();
    if (c == '(') {
      open_.push_back({add({}, true)});
      advance();
    } else if (c == ')') {
      open_.pop_back();
      advance();
    } else if (c == '"') {
      take_string();
    } else {
      std::size_t end = 0;
      while (end < text_.size() && !is_blank(text_[end]) && text_[end] != '(' && text_[end] != ')')
        ++end;
      add(text_.substr(0, end), false);
      text_.remove_prefix(end);
    }
  }

  void take_string() {
    const int begun = line_;
    advance();
    std::size_t end = 0;
    bool escapes = false;
    while (end < text_.size() && text_[end] != '"') {
      escapes = escapes || text_[end] == '\\';
      end += text_[end] == '\\' ? 2U : 1U;
    }
    if (end >= text_.size()) refuse_at(tree_.name_, begun, "a string is not closed");
    const auto inside = text_.substr(0, end);
    add(escapes ? unescaped(inside) : inside, false);
    for (const char c : inside) line_ += c == '\n';
    text_.remove_prefix(end + 1);
  }

  std::string_view unescaped(std::string_view inside) {
    std::string plain;
    for (std::size_t i = 0; i < inside.size(); ++i) {
      char c = inside[i];
      if (c == '\\') {
        c = inside[++i];
        if (c == 'n') c = '\n';
        if (c == 't') c = '\t';
        if (c == 'r') continue;
      }
      plain += c;
    }
    return tree_.unescaped_.emplace_back(std::move(plain));
  }

  gxi_kicad_tree_t& tree_;
  std::string_view text_;
  int line_ = 1;
  std::vector<open_t> open_{};
};

gxi_kicad_tree_t::gxi_kicad_tree_t(std::string_view text, std::string_view name) : name_(name) {
  gxi_kicad_parser_t(*this, text).run();
}

gxi_kicad_list_t gxi_kicad_tree_t::root() const { return {*this, 0}; }

int gxi_kicad_list_t::line() const { return tree_ ? gx_at(tree_->nodes_, node_).line : 0; }

std::string_view gxi_kicad_list_t::word(int i) const {
  if (!tree_) return {};
  for (int node = gx_at(tree_->nodes_, node_).first; node >= 0;) {
    const auto& at = gx_at(tree_->nodes_, node);
    if (!at.is_list && i-- == 0) return at.word;
    node = at.next;
  }
  return {};
}

bool gxi_kicad_list_t::has_word(std::string_view word) const {
  if (!tree_) return false;
  int node = gx_at(tree_->nodes_, node_).first;
  while (node >= 0) {
    node = gx_at(tree_->nodes_, node).next;
    if (node >= 0 && !gx_at(tree_->nodes_, node).is_list && gx_at(tree_->nodes_, node).word == word)
      return true;
  }
  return false;
}

gxi_kicad_list_t gxi_kicad_list_t::child(std::string_view keyword) const {
  if (!tree_) return {};
  for (int node = gx_at(tree_->nodes_, node_).first; node >= 0;) {
    const auto& at = gx_at(tree_->nodes_, node);
    if (at.is_list && at.first >= 0) {
      const auto& head = gx_at(tree_->nodes_, at.first);
      if (!head.is_list && head.word == keyword) return {*tree_, node};
    }
    node = at.next;
  }
  return {};
}

std::vector<gxi_kicad_list_t> gxi_kicad_list_t::children() const {
  std::vector<gxi_kicad_list_t> lists;
  if (!tree_) return lists;
  for (int node = gx_at(tree_->nodes_, node_).first; node >= 0;
       node = gx_at(tree_->nodes_, node).next)
    if (gx_at(tree_->nodes_, node).is_list) lists.push_back({*tree_, node});
  return lists;
}

double gxi_kicad_list_t::number(int i) const {
  const auto text = word(i);
  if (!tree_) return 0;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !(std::abs(value) <= 1e9))
    refuse("\"" + std::string(text.substr(0, 40)) + "\" in (" + std::string(keyword()) +
           ") is no number");
  return value;
}

int gxi_kicad_list_t::length(int i) const {
  const double value = number(i);
  if (std::abs(value) > furthest_millimetres)
    refuse(std::string(word(i)) + " in (" + std::string(keyword()) + ") is beyond 10 m");
  return static_cast<int>(std::lround(value * units_of_millimetre));
}

bool gxi_kicad_list_t::flag(std::string_view keyword, bool absent) const {
  if (const auto list = child(keyword)) return list.word(1) != "no";
  return has_word(keyword) || absent;
}

void gxi_kicad_list_t::refuse(const std::string& what) const {
  refuse_at(tree_ ? tree_->name_ : std::string_view(), line(), what);
}
