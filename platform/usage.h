// What all programs of the house do alike with their command line, as the GNU conventions ask:
// --help and --version on standard output with status 0, usage errors on standard error with
// status 2, messages that begin with the program's name, and no success when the output is lost.
#pragma once

#include <cstdio>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

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

void tool_print(std::FILE* stream, std::string_view text);

// "NAME: message" on standard error.
void tool_complain(const tool_t& tool, std::string_view message);

// The same and where help is found; the status of a usage error.
int tool_usage_error(const tool_t& tool, std::string_view message);

// Flushes standard output; `exit_status`, or 1 with a message when something could not be written.
int tool_end(const tool_t& tool, int exit_status);

// Reads the command line: options into their places, all else into `words`; what follows "--", or
// the word that is number `last` (a script, whose words are its own), is no option. A status when
// the program is to end with it: it was asked about itself, or asked wrongly. From then on a reader
// of standard output that goes away is an error that tool_end reports.
std::optional<int> tool_read(const tool_t& tool, int argc, char** argv,
                             std::span<const tool_option_t> options,
                             std::vector<std::string_view>& words,
                             std::size_t last = std::string_view::npos);

// A program that reads nothing from its command line.
template <typename Run>
int tool_without_words(const tool_t& tool, int argc, char** argv, Run run) {
  std::vector<std::string_view> words;
  if (const auto ended = tool_read(tool, argc, argv, {}, words)) return *ended;
  if (!words.empty()) return tool_usage_error(tool, "no argument is wanted");
  return tool_end(tool, run());
}
