#include "platform/usage.h"

#include <cerrno>
#include <cstring>
#include <string>

#include "platform/stop_signals.h"

void tool_print(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

void tool_complain(const tool_t& tool, std::string_view message) {
  tool_print(stderr, std::string(tool.name).append(": ").append(message).append("\n"));
}

int tool_usage_error(const tool_t& tool, std::string_view message) {
  tool_complain(tool, message);
  tool_print(stderr, "Try '" + std::string(tool.name) + " --help'.\n");
  return 2;
}

int tool_end(const tool_t& tool, int exit_status) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return exit_status;
  tool_complain(tool, std::string("standard output: ") + std::strerror(errno));
  return 1;
}

std::optional<int> tool_read(const tool_t& tool, int argc, char** argv,
                             std::span<const tool_option_t> options,
                             std::vector<std::string_view>& words, std::size_t last) {
  x_survive_broken_pipes();
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
                 std::string(tool.name).append(" (KIVO) ").append(KIVO_VERSION).append("\n"));
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
