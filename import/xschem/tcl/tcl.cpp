// Brackets, braces, `if` and `return`.
#include "import/xschem/tcl/tcl.h"

#include <algorithm>
#include <array>

#include "gx/text/strings.h"
#include "import/xschem/attributes.h"
#include "import/xschem/tcl/tcl_words.h"

namespace {

constexpr int most_brackets = 20;  // brackets within brackets
constexpr std::string_view mark = "tcleval(";

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && (gxi_xschem_is_blank(text.front()) || text.front() == ';'))
    text.remove_prefix(1);
  while (!text.empty() && gxi_xschem_is_blank(text.back())) text.remove_suffix(1);
  return text;
}

class tcl_reader {
 public:
  explicit tcl_reader(const gxi_xschem_tcl_scope_t& scope) : scope_(scope) {}

  gxi_xschem_tcl_t run(std::string_view text) {
    result_.text = filled(text, 0);
    return std::move(result_);
  }

 private:
  // Each bracket by what it gives, each variable by its value.
  std::string filled(std::string_view text, int depth) {
    std::string all;
    while (!text.empty()) {
      const auto open = std::min(text.find_first_of("[$"), text.size());
      if (open < text.size() && text[open] == '$') {
        all += text.substr(0, open);
        text.remove_prefix(open);
        all += variable(text);
        continue;
      }
      // "A[3]" after a letter, without a blank in it, is a name.
      const auto end = gxi_xschem_tcl_closed(text.substr(open), '[', ']');
      const bool of_name = open > 0 && !gxi_xschem_is_blank(text[open - 1]) &&
                           end != std::string_view::npos &&
                           text.substr(open, end).find_first_of(" \n\t") == std::string_view::npos;
      all += text.substr(0, open);
      text.remove_prefix(open);
      if (text.empty()) break;
      const bool is_list = text.size() > 1 && gxi_xschem_is_blank(text[1]) && text.find("@@") < end;
      if (end == std::string_view::npos || of_name || (is_list && !has_command(text.substr(1)))) {
        all += text.front();
        text.remove_prefix(1);
        continue;
      }
      all += command(text.substr(1, end - 2), depth);
      text.remove_prefix(end);
    }
    return all;
  }

  // Its value, else as it is written; it is taken from the text.
  std::string variable(std::string_view& text) {
    const auto whole = text;
    const auto name = gxi_xschem_tcl_variable(text);
    const auto found = scope_.variables.find(name);
    if (found != scope_.variables.end()) return found->second;
    result_.is_plain = result_.is_plain && name.empty();
    return std::string(whole.substr(0, whole.size() - text.size()));
  }

  static bool has_command(std::string_view text) {
    const auto first = trimmed(text);
    return first.starts_with("if") || first.starts_with("return");
  }

  std::string command(std::string_view script, int depth) {
    script = trimmed(script);
    if (depth < most_brackets && script.starts_with("return")) {
      script.remove_prefix(6);
      return filled(word(script), depth + 1);
    }
    if (depth < most_brackets && script.starts_with("if")) {
      script.remove_prefix(2);
      return branch(script, depth + 1);
    }
    if (const auto path = argument(script, "abs_sym_path", depth)) return *path;
    for (const auto* const read : {"read_data_nonewline", "read_data"})
      if (const auto path = argument(script, read, depth)) return ".include " + *path;
    if (auto answer = gxi_xschem_tcl_answer(script, scope_)) return *std::move(answer);
    result_.is_plain = false;
    return {};
  }

  // The argument of a command of that name.
  std::optional<std::string> argument(std::string_view script, std::string_view name, int depth) {
    if (depth >= most_brackets || !script.starts_with(name) || script.size() == name.size() ||
        !gxi_xschem_is_blank(script[name.size()]))
      return std::nullopt;
    return std::string(trimmed(filled(script.substr(name.size()), depth + 1)));
  }

  // The next word, without its braces or quotes.
  static std::string_view word(std::string_view& script) {
    script = trimmed(script);
    if (script.empty()) return {};
    const char open = script.front();
    std::size_t end = 0;
    if (open == '{')
      end = gxi_xschem_tcl_closed(script, '{', '}');
    else if (open == '"')
      end = script.find('"', 1) == std::string_view::npos ? std::string_view::npos
                                                          : script.find('"', 1) + 1;
    else
      while (end < script.size() && !gxi_xschem_is_blank(script[end])) {
        const auto rest = script.substr(end);
        end +=
            rest.front() == '[' ? std::min(gxi_xschem_tcl_closed(rest, '[', ']'), rest.size()) : 1;
      }
    end = std::min(end, script.size());
    const bool bare = open != '{' && open != '"';
    const auto found = bare || end < 2 ? script.substr(0, end) : script.substr(1, end - 2);
    script.remove_prefix(end);
    return found;
  }

  std::string branch(std::string_view rest, int depth) {
    while (true) {
      const auto truth = condition(word(rest));
      auto body = word(rest);
      if (body == "then") body = word(rest);
      if (!truth) result_.is_plain = false;
      if (truth.value_or(true)) {
        auto text = command(body, depth);
        if (truth || !trimmed(text).empty()) return text;
      }
      const auto next = word(rest);
      if (next == "elseif") continue;
      return command(next == "else" ? word(rest) : next, depth);
    }
  }

  static std::optional<bool> condition(std::string_view text) {
    text = trimmed(text);
    bool wanted = true;
    while (!text.empty() && text.front() == '!') {
      wanted = !wanted;
      text = trimmed(text.substr(1));
    }
    if (text == "[sim_is_ngspice]") return wanted;
    if (text == "[sim_is_xyce]" || text == "[sim_is_Xyce]" || text == "[sim_is_spectre]")
      return !wanted;
    const auto plain = gxi_xschem_truth(text);
    return plain && !text.empty() ? std::optional(*plain == wanted) : std::nullopt;
  }

  const gxi_xschem_tcl_scope_t& scope_;
  gxi_xschem_tcl_t result_;
};

}  // namespace

gxi_xschem_tcl_t gxi_xschem_plain_tcl(std::string_view text, const gxi_xschem_tcl_scope_t& scope) {
  const auto inner = trimmed(text);
  if (!inner.starts_with(mark)) return {std::string(text), true};
  const auto end = inner.rfind(')');
  return tcl_reader(scope).run(inner.substr(
      mark.size(), end == std::string_view::npos ? end : end - std::min(end, mark.size())));
}

std::optional<bool> gxi_xschem_truth(std::string_view text) {
  constexpr auto yes =
      std::to_array<std::string_view>({"true", "open", "1", "yes", "on", "t", "y"});
  constexpr auto no = std::to_array<std::string_view>({"", "false", "0", "no", "off", "f", "n"});
  const auto is = [&](std::string_view word) { return gx_iden(word, text); };
  if (std::any_of(yes.begin(), yes.end(), is)) return true;
  if (std::any_of(no.begin(), no.end(), is)) return false;
  return std::nullopt;
}
