// What all programs of the house do alike with their command line, as the GNU conventions ask:
// --help and --version on standard output with status 0, usage errors on standard error with
// status 2, messages that begin with the program's name, and no success when the output is lost.
#pragma once

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::string_view kivo_version = "2.02";

struct tool_t {
  std::string_view name;
  std::string_view help;  // whole lines; the first is "usage: NAME ..."
};

// An option by its name with the dashes. One with a value takes the rest of its word ("-oFILE",
// "--output=FILE") or the next word, one with values may be given again; one with a flag sets it.
struct tool_option_t {
  std::string_view name;
  std::string_view* value = nullptr;
  std::vector<std::string_view>* values = nullptr;
  bool* flag = nullptr;
  bool takes_value() const { return value != nullptr || values != nullptr; }
};

inline void tool_print(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

// "NAME: message" on standard error.
inline void tool_complain(const tool_t& tool, std::string_view message) {
  tool_print(stderr, std::string(tool.name).append(": ").append(message).append("\n"));
}

inline int tool_usage_error(const tool_t& tool, std::string_view message) {
  tool_complain(tool, message);
  tool_print(stderr, "Try '" + std::string(tool.name) + " --help'.\n");
  return 2;
}

// Flushes standard output; `exit_status`, or 1 with a message when something could not be written.
inline int tool_end(const tool_t& tool, int exit_status) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return exit_status;
  tool_complain(tool, std::string("standard output: ") + std::strerror(errno));
  return 1;
}

// Reads the command line: options into their places, all else into `words`; what follows "--", or
// the word that is number `last` (a script, whose words are its own), is no option. A status when
// the program is to end with it: it was asked about itself, or asked wrongly.
inline std::optional<int> tool_read(const tool_t& tool, int argc, char** argv,
                                    std::span<const tool_option_t> options,
                                    std::vector<std::string_view>& words,
                                    std::size_t last = std::string_view::npos) {
  bool options_end = false;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (options_end || word.size() < 2 || word[0] != '-') {
      words.push_back(word);
      options_end = options_end || words.size() == last;
      continue;
    }
    if (word == "--") {
      options_end = true;
      continue;
    }
    if (word == "--help") {
      tool_print(stdout, tool.help);
      return tool_end(tool, 0);
    }
    if (word == "--version") {
      tool_print(stdout,
                 std::string(tool.name).append(" (KIVO) ").append(kivo_version).append("\n"));
      return tool_end(tool, 0);
    }
    const tool_option_t* found = nullptr;
    std::string_view rest;
    for (const tool_option_t& option : options) {
      if (!word.starts_with(option.name)) continue;
      rest = word.substr(option.name.size());
      const bool is_long = option.name.starts_with("--");
      if (!rest.empty() && (!option.takes_value() || (is_long && rest[0] != '='))) continue;
      if (is_long && !rest.empty()) rest.remove_prefix(1);
      found = &option;
      break;
    }
    if (!found) return tool_usage_error(tool, "unknown option " + std::string(word));
    if (found->flag) *found->flag = true;
    if (!found->takes_value()) continue;
    if (word.size() == found->name.size()) {
      if (++i == argc) return tool_usage_error(tool, std::string(word) + " needs a value");
      rest = argv[i];
    }
    if (found->value) *found->value = rest;
    if (found->values) found->values->push_back(rest);
  }
  return std::nullopt;
}

// A program that reads nothing from its command line.
template <typename Run>
int tool_without_words(const tool_t& tool, int argc, char** argv, Run run) {
  std::vector<std::string_view> words;
  if (const auto ended = tool_read(tool, argc, argv, {}, words)) return *ended;
  if (!words.empty()) return tool_usage_error(tool, "no argument is wanted");
  return tool_end(tool, run());
}
