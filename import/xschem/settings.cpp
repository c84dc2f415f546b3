// Words of Tcl commands, what stands for their variables and brackets, and the conditions of `if`.
#include "import/xschem/settings.h"

#include <algorithm>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "import/drawing/source_file.h"
#include "import/xschem/attributes.h"

namespace {

namespace fs = std::filesystem;

constexpr int deepest_script =
    20;  // files that source files, `if` within `if`, brackets in brackets
constexpr std::size_t longest_value = 1U << 16U;

struct word_t {
  std::string_view text{};
  bool braced = false;  // nothing in it stands for something else
  int line = 0;
};

// Parts a script into commands and those into words.
class command_splitter {
 public:
  command_splitter(std::string_view text, int line) : text_(text), line_(line) {}

  // The words of the next command; none at the end.
  std::vector<word_t> next() {
    std::vector<word_t> words;
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

 private:
  void step() { line_ += text_[at_++] == '\n'; }
  // A sign, or what a backslash hides.
  void skip() {
    if (text_[at_] == '\\' && at_ + 1 < text_.size()) step();
    step();
  }

  void skip_closed(char open, char close) {
    int depth = 0;
    while (at_ < text_.size()) {
      depth += text_[at_] == open ? 1 : text_[at_] == close ? -1 : 0;
      skip();
      if (depth == 0) return;
    }
  }

  word_t word() {
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
  void part() {
    if (text_[at_] == '[')
      skip_closed('[', ']');
    else if (text_.substr(at_, 2) == "${")
      while (at_ < text_.size() && text_[at_] != '}') step();
    else
      skip();
  }

  word_t inner(std::size_t first, bool braced, int line) const {
    const auto length = at_ - first;
    return {length < 2 ? std::string_view() : text_.substr(first + 1, length - 2), braced, line};
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int line_;
};

std::string_view without_blanks(std::string_view text) {
  while (!text.empty() && gxi_xschem_is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && gxi_xschem_is_blank(text.back())) text.remove_suffix(1);
  return text;
}

bool is_of_variable(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

class settings_reader {
 public:
  settings_reader(gxi_xschem_settings_t& settings, std::list<std::string>& files,
                  gxm_messages_t& messages)
      : settings_(settings), files_(files), messages_(messages) {}

  void read(const fs::path& path, int depth) {
    if (!read_.insert(path.lexically_normal()).second) return;
    const auto outer = std::pair(script_, name_);
    script_ = path;
    name_ = files_.emplace_back(path.lexically_normal().string());
    try {
      const auto text = gxi_read_source(path);
      run(text, 1, depth);
    } catch (const std::runtime_error& error) {
      messages_.emplace_back(error.what());
    }
    std::tie(script_, name_) = outer;
  }

 private:
  using value_t = std::optional<std::string>;  // nothing: only Tcl can tell

  void run(std::string_view script, int line, int depth) {
    command_splitter commands(script, line);
    for (auto words = commands.next(); !words.empty(); words = commands.next())
      if (!take(words, depth) && concerns_libraries(words))
        gxm_complain(messages_, {name_, words.front().line},
                     "\"" + std::string(words.front().text) +
                         "\" is not followed: it needs Tcl, and names of libraries may be lost");
  }

  static bool concerns_libraries(const std::vector<word_t>& words) {
    return std::any_of(words.begin(), words.end(), [](const word_t& word) {
      return word.text == "source" || word.text.find("_LIBRARY_PATH") != std::string_view::npos;
    });
  }

  // False where the command cannot be read.
  bool take(const std::vector<word_t>& words, int depth) {
    const auto command = words.front().text;
    if (command == "if") return branch(words, depth);
    if (command == "source" && words.size() == 2) {
      const auto name = value(words[1], depth);
      if (!name || depth >= deepest_script) return false;
      const fs::path path(*name);
      read(fs::path(settings_["env(PWD)"]) / path, depth + 1);
      return true;
    }
    const bool appends = command == "append", to_list = command == "lappend";
    if ((command != "set" && !appends && !to_list) || words.size() < 2) return false;
    const auto name = value(words[1], depth);
    if (!name) return false;
    if (command == "set" && words.size() == 2) return true;  // it only asks
    std::string added;
    for (std::size_t i = 2; i < words.size(); ++i) {
      const auto one = value(words[i], depth);
      if (!one) {
        if (command == "set") settings_.erase(global_name(*name));
        return false;
      }
      added += (to_list ? ":" : "") + *one;
    }
    auto& kept = settings_[global_name(*name)];
    if (command == "set") kept.clear();
    if (kept.size() + added.size() < longest_value) kept += added;
    return true;
  }

  bool branch(const std::vector<word_t>& words, int depth) {
    if (depth >= deepest_script) return false;
    for (std::size_t i = 1; i < words.size(); ++i) {
      bool chosen = false;
      if (words[i].text == "else") {
        chosen = true;
      } else {
        if (words[i].text == "elseif" && ++i >= words.size()) return false;
        const auto truth = any_of(words[i].text, depth + 1);
        if (!truth) return false;
        chosen = *truth;
      }
      if (++i < words.size() && words[i].text == "then") ++i;
      if (i >= words.size()) return false;
      if (chosen) {
        run(words[i].text, words[i].line, depth + 1);
        return true;
      }
    }
    return true;
  }

  // --- what words stand for
  value_t value(const word_t& word, int depth) const {
    return word.braced ? value_t(std::string(word.text)) : filled(word.text, depth);
  }

  value_t filled(std::string_view text, int depth) const {
    std::string all;
    while (!text.empty()) {
      const char c = text.front();
      if (c == '[') {
        const auto end = end_of_brackets(text);
        if (end == std::string_view::npos || depth >= deepest_script) return std::nullopt;
        const auto given = answer(text.substr(1, end - 1), depth + 1);
        if (!given) return std::nullopt;
        all += *given;
        text.remove_prefix(end + 1);
      } else if (c == '$') {
        const auto name = variable(text);
        if (name.empty()) return std::nullopt;
        const auto found = settings_.find(name);
        if (found == settings_.end()) return std::nullopt;
        all += found->second;
      } else {
        if (c == '\\' && text.size() > 1) {
          text.remove_prefix(1);
          all += text.front() == '\n' ? ' ' : text.front();
        } else {
          all += c;
        }
        text.remove_prefix(1);
      }
      if (all.size() > longest_value) return std::nullopt;
    }
    return all;
  }

  static std::string global_name(std::string_view name) {
    return std::string(name.substr(name.starts_with("::") ? 2 : 0));
  }

  static std::size_t end_of_brackets(std::string_view text) {
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '\\')
        ++i;
      else if (text[i] == '[')
        ++depth;
      else if (text[i] == ']' && --depth == 0)
        return i;
    }
    return std::string_view::npos;
  }

  // The name after a "$", which is taken from the text.
  static std::string variable(std::string_view& text) {
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
    if (end < text.size() && text[end] == '(')
      end = std::min(text.find(')', end), text.size() - 1) + 1;
    name = text.substr(0, end);
    text.remove_prefix(end);
    return name;
  }

  // What a command in brackets gives.
  value_t answer(std::string_view script, int depth) const {
    const auto words = command_splitter(script, 1).next();
    if (words.size() == 1 && words[0].text == "pwd") return filled("$env(PWD)", depth);
    if (words.size() < 2) return std::nullopt;
    std::vector<std::string> given;
    for (const auto& word : words) {
      auto one = value(word, depth);
      if (!one) return std::nullopt;
      given.push_back(std::move(*one));
    }
    if (given[0] == "info" && given[1] == "script") return script_.string();
    if (given.size() < 3) return std::nullopt;
    if (given[0] == "info" && given[1] == "exists")
      return settings_.contains(global_name(given[2])) ? "1" : "0";
    return given[0] == "file" ? of_file(given) : std::nullopt;
  }

  static value_t of_file(const std::vector<std::string>& words) {
    const auto& what = words[1];
    const fs::path path(words[2]);
    std::error_code none;
    if (what == "dirname") return path.has_parent_path() ? path.parent_path().string() : ".";
    if (what == "tail") return path.filename().string();
    if (what == "normalize") return fs::absolute(path).lexically_normal().string();
    if (what == "exists" || what == "readable") return fs::exists(path, none) ? "1" : "0";
    if (what.starts_with("isdir")) return fs::is_directory(path, none) ? "1" : "0";
    if (what == "isfile") return fs::is_regular_file(path, none) ? "1" : "0";
    if (what != "join") return std::nullopt;
    fs::path all;
    for (std::size_t i = 2; i < words.size(); ++i) all /= words[i];
    return all.string();
  }

  // --- conditions: terms joined by && and ||, each a comparison of words or a truth
  std::optional<bool> any_of(std::string_view text, int depth) const {
    if (depth >= deepest_script) return std::nullopt;
    for (const auto& [sign, stop] : {std::pair("||", true), std::pair("&&", false)}) {
      const auto at = outside_of_brackets(text, sign);
      if (at == std::string_view::npos) continue;
      const auto left = any_of(text.substr(0, at), depth);
      if (!left || *left == stop) return left;
      return any_of(text.substr(at + 2), depth + 1);
    }
    return term(without_blanks(text), depth);
  }

  static std::size_t outside_of_brackets(std::string_view text, std::string_view sign) {
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (depth == 0 && text.substr(i, sign.size()) == sign) return i;
      const char c = text[i];
      depth += c == '[' || c == '{' || c == '(' ? 1 : c == ']' || c == '}' || c == ')' ? -1 : 0;
    }
    return std::string_view::npos;
  }

  std::optional<bool> term(std::string_view text, int depth) const {
    if (depth >= deepest_script) return std::nullopt;
    if (text.starts_with("!")) {
      const auto truth = term(without_blanks(text.substr(1)), depth + 1);
      return truth ? std::optional(!*truth) : std::nullopt;
    }
    if (text.starts_with("(") && text.ends_with(")"))
      return any_of(text.substr(1, text.size() - 2), depth + 1);
    for (const auto& [sign, equal] : {std::pair(" eq ", true), std::pair(" ne ", false),
                                      std::pair("==", true), std::pair("!=", false)}) {
      const auto at = outside_of_brackets(text, sign);
      if (at == std::string_view::npos) continue;
      const auto left = operand(text.substr(0, at), depth);
      const auto right = operand(text.substr(at + std::string_view(sign).size()), depth);
      if (!left || !right) return std::nullopt;
      return (*left == *right) == equal;
    }
    const auto plain = operand(text, depth);
    if (plain == "1" || plain == "true") return true;
    if (plain == "0" || plain == "false") return false;
    return std::nullopt;
  }

  value_t operand(std::string_view text, int depth) const {
    const auto words = command_splitter(without_blanks(text), 1).next();
    return words.size() == 1 ? value(words.front(), depth) : std::nullopt;
  }

  gxi_xschem_settings_t& settings_;
  std::list<std::string>& files_;
  gxm_messages_t& messages_;
  fs::path script_{};
  std::string_view name_{};
  std::set<fs::path> read_{};  // each counts once
};

}  // namespace

void gxi_xschem_take_settings(const fs::path& file, gxi_xschem_settings_t& settings,
                              std::list<std::string>& files, gxm_messages_t& messages) {
  settings_reader(settings, files, messages).read(file, 0);
}
