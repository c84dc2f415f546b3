// Commands without effects outside of their procedure.
#include "import/xschem/tcl/tcl_script.h"

#include <utility>

#include "deck/expression.h"
#include "import/xschem/tcl/tcl_words.h"

namespace {

using value_t = std::optional<std::string>;
using words_t = std::vector<gxi_xschem_tcl_word_t>;

constexpr int deepest_call = 20;      // procedures, brackets, `if` within one another
constexpr int most_commands = 10000;  // of one answer
constexpr std::size_t longest_text = 1U << 16U;

std::string without_colons(std::string_view name) {
  return std::string(name.substr(name.starts_with("::") ? 2 : 0));
}

// Arithmetic as far as Tcl gives the same: whole numbers are divided otherwise there.
value_t tcl_number(const std::string& text) {
  const auto value = dk_evaluate(text);
  const bool is_real = text.find_first_of(".eE") != std::string::npos;
  if (!value || (!is_real && text.find('/') != std::string::npos)) return std::nullopt;
  return dk_number_text(*value);
}

class script_reader {
 public:
  explicit script_reader(const gxi_xschem_tcl_scope_t& scope) : scope_(scope) {}

  // What the last command of the script gives, or `return`.
  value_t run(std::string_view script, int depth) {
    value_t last = "";
    gxi_xschem_tcl_commands_t commands(script);
    for (auto words = commands.next(); !words.empty() && !returned_; words = commands.next()) {
      if (depth > deepest_call || ++commands_ > most_commands) return std::nullopt;
      last = take(words, depth);
      if (!last) return std::nullopt;
    }
    return last;
  }

 private:
  using variables_t = std::map<std::string, std::string, std::less<>>;

  value_t take(const words_t& words, int depth) {
    const auto command = words[0].text;
    if (command == "if") return branch(words, depth);
    if (command == "puts") return "";  // what it shows is no part of a netlist
    if (command == "catch" && words.size() <= 3 && words.size() > 1) return caught(words, depth);
    std::vector<std::string> given;
    for (const auto& word : words) {
      auto one = value(word, depth);
      if (!one) return std::nullopt;
      given.push_back(std::move(*one));
    }
    if (command == "expr") return expression(given, depth);
    if (command == "set" && given.size() == 3) return variables_[given[1]] = given[2];
    if (command == "set" && given.size() == 2) return variable(given[1]);
    if (command == "return" && given.size() <= 2) {
      returned_ = true;
      return given.size() == 2 ? given[1] : "";
    }
    return call(given, depth);
  }

  value_t call(const std::vector<std::string>& given, int depth) {
    const auto found = scope_.procedures.find(without_colons(given[0]));
    if (found == scope_.procedures.end() || given.size() != found->second.arguments.size() + 1)
      return std::nullopt;
    const auto outer = std::exchange(variables_, {});
    for (std::size_t i = 1; i < given.size(); ++i)
      variables_[found->second.arguments[i - 1]] = given[i];
    auto answer = run(found->second.body, depth + 1);
    returned_ = false;
    variables_ = outer;
    return answer;
  }

  // An error of Tcl cannot be told from what is not read here, so that only success is known.
  value_t caught(const words_t& words, int depth) {
    const auto answer = run(words[1].text, depth + 1);
    if (!answer || returned_) return std::nullopt;
    if (words.size() == 3) variables_[std::string(words[2].text)] = *answer;
    return "0";
  }

  value_t branch(const words_t& words, int depth) {
    for (std::size_t i = 1; i < words.size(); ++i) {
      bool chosen = words[i].text == "else";
      if (!chosen) {
        if (words[i].text == "elseif" && ++i == words.size()) return std::nullopt;
        const auto condition = filled(words[i].text, depth + 1);
        const auto truth = condition ? dk_evaluate(*condition) : std::nullopt;
        if (!truth) return std::nullopt;
        chosen = *truth != 0;
      }
      if (++i < words.size() && words[i].text == "then") ++i;
      if (i == words.size()) return std::nullopt;
      if (chosen) return run(words[i].text, depth + 1);
    }
    return "";
  }

  value_t expression(const std::vector<std::string>& given, int depth) {
    std::string all;
    for (std::size_t i = 1; i < given.size(); ++i) all += (i == 1 ? "" : " ") + given[i];
    const auto text = filled(all, depth + 1);
    return text ? tcl_number(*text) : std::nullopt;
  }

  value_t variable(const std::string& name) const {
    const auto own = variables_.find(name);
    if (own != variables_.end()) return own->second;
    const auto global = scope_.variables.find(without_colons(name));
    return global == scope_.variables.end() ? std::nullopt : value_t(global->second);
  }

  value_t value(const gxi_xschem_tcl_word_t& word, int depth) {
    return word.braced ? value_t(std::string(word.text)) : filled(word.text, depth);
  }

  value_t filled(std::string_view text, int depth) {
    std::string all;
    while (!text.empty()) {
      const char c = text.front();
      value_t part;
      if (c == '[') {
        const auto end = gxi_xschem_tcl_closed(text, '[', ']');
        if (end == std::string_view::npos || depth > deepest_call) return std::nullopt;
        part = run(text.substr(1, end - 2), depth + 1);
        text.remove_prefix(end);
      } else if (c == '$') {
        part = variable(gxi_xschem_tcl_variable(text));
      } else {
        if (c == '\\' && text.size() > 1) text.remove_prefix(1);
        part = std::string(1, text.front());
        text.remove_prefix(1);
      }
      if (!part || all.size() > longest_text) return std::nullopt;
      all += *part;
    }
    return all;
  }

  const gxi_xschem_tcl_scope_t& scope_;
  variables_t variables_;
  bool returned_ = false;
  int commands_ = 0;
};

}  // namespace

void gxi_xschem_take_tcl(std::string_view text, gxi_xschem_tcl_scope_t& scope) {
  if (text.find("tcleval(") == std::string_view::npos) return;
  constexpr std::string_view makes = "proc ";
  for (auto at = text.find(makes); at != text.npos; at = text.find(makes, at + 1)) {
    const auto words = gxi_xschem_tcl_commands_t(text.substr(at)).next();
    if (words.size() < 4 || words[0].text != "proc") continue;
    gxi_xschem_tcl_procedure_t procedure{.body = std::string(words[3].text)};
    gxi_xschem_tcl_commands_t arguments(words[2].text);
    for (const auto& argument : arguments.next()) procedure.arguments.emplace_back(argument.text);
    scope.procedures[without_colons(words[1].text)] = std::move(procedure);
  }
  constexpr std::string_view sets = "[set ";
  for (auto at = text.find(sets); at != text.npos; at = text.find(sets, at + 1)) {
    const auto from = text.substr(at + 1);
    const auto words = gxi_xschem_tcl_commands_t(from.substr(0, from.find(']'))).next();
    if (words.size() == 3 && words[2].text.find_first_of("[$\\") == std::string_view::npos)
      scope.variables[without_colons(words[1].text)] = words[2].text;
  }
}

std::optional<std::string> gxi_xschem_tcl_answer(std::string_view command,
                                                 const gxi_xschem_tcl_scope_t& scope) {
  return script_reader(scope).run(command, 0);
}
