// What stands for the variables and brackets of commands, and the conditions of `if`.
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
#include "import/xschem/tcl/tcl_words.h"

namespace {

namespace fs = std::filesystem;

constexpr int deepest_script =
    20;  // files that source files, `if` within `if`, brackets in brackets
constexpr std::size_t longest_value = 1U << 16U;

std::string_view without_blanks(std::string_view text) {
  while (!text.empty() && gxi_xschem_is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && gxi_xschem_is_blank(text.back())) text.remove_suffix(1);
  return text;
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
  using value_t = std::optional<std::string>;  // nothing: only Tcl knows

  void run(std::string_view script, int line, int depth) {
    gxi_xschem_tcl_commands_t commands(script, line);
    for (auto words = commands.next(); !words.empty(); words = commands.next())
      if (!take(words, depth) && concerns_libraries(words))
        gxm_complain(messages_, {name_, words.front().line},
                     "\"" + std::string(words.front().text) +
                         "\" is not followed: it needs Tcl, and names of libraries may be lost");
  }

  static bool concerns_libraries(const std::vector<gxi_xschem_tcl_word_t>& words) {
    return std::any_of(words.begin(), words.end(), [](const gxi_xschem_tcl_word_t& word) {
      return word.text == "source" || word.text.find("_LIBRARY_PATH") != std::string_view::npos;
    });
  }

  // False where the command cannot be read.
  bool take(const std::vector<gxi_xschem_tcl_word_t>& words, int depth) {
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

  bool branch(const std::vector<gxi_xschem_tcl_word_t>& words, int depth) {
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
  value_t value(const gxi_xschem_tcl_word_t& word, int depth) const {
    return word.braced ? value_t(std::string(word.text)) : filled(word.text, depth);
  }

  value_t filled(std::string_view text, int depth) const {
    std::string all;
    while (!text.empty()) {
      const char c = text.front();
      if (c == '[') {
        const auto end = gxi_xschem_tcl_closed(text, '[', ']');
        if (end == std::string_view::npos || depth >= deepest_script) return std::nullopt;
        const auto given = answer(text.substr(1, end - 2), depth + 1);
        if (!given) return std::nullopt;
        all += *given;
        text.remove_prefix(end);
      } else if (c == '$') {
        const auto name = gxi_xschem_tcl_variable(text);
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

  // What a command in brackets gives.
  value_t answer(std::string_view script, int depth) const {
    const auto words = gxi_xschem_tcl_commands_t(script).next();
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
    const auto words = gxi_xschem_tcl_commands_t(without_blanks(text)).next();
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
