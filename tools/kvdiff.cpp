// kvdiff: what changed electrically from one expanded design to another.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "compare/changes.h"
#include "compare/words.h"
#include "export/json.h"
#include "export/output.h"
#include "kvi/load.h"
#include "platform/usage.h"

namespace {

constexpr tool_t tool{
    "kvdiff",
    "usage: kvdiff [--json | --quiet] OLD NEW\n"
    "Prints what changed electrically from OLD to NEW, each the directory of a design that KIVO\n"
    "expanded, or a design file: a line for each change.\n"
    "  --json     prints the changes as JSON\n"
    "  --quiet    prints nothing; the status says whether something changed\n"
    "  --help     prints this\n"
    "  --version  prints the version\n"
    "Status 0: nothing changed; 1: something did; 2: a design cannot be read.\n"};
constexpr int trouble = 2;

// Lines of what is in a new branch are left out: the branch has one.
void write_lines(const std::vector<kv_change_t>& changes, bool coloured, kv_output_t& out) {
  for (const kv_change_t& change : changes) {
    if (change.in_new_branch) continue;
    const char sign = kv_change_sign(change.change);
    if (coloured) out << (sign == '-' ? "\x1b[31m" : sign == '+' ? "\x1b[32m" : "\x1b[33m");
    out << sign << ' ' << kv_change_text(change);
    out << (coloured ? "\x1b[0m\n" : "\n");
  }
}

bool shows_colours() {
  const char *term = std::getenv("TERM"), *no_colour = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && term != nullptr && std::string_view(term) != "dumb" &&
         (no_colour == nullptr || *no_colour == '\0');
}

int complain(const std::string& message) {
  tool_complain(tool, message);
  return trouble;
}

}  // namespace

int main(int argc, char** argv) {
  bool json = false, quiet = false;
  std::vector<std::string_view> words;
  const tool_option_t options[] = {{.name = "--json", .flag = &json},
                                   {.name = "--quiet", .flag = &quiet}};
  if (const auto status = tool_read(tool, argc, argv, options, words)) return *status;
  if (json && quiet) return tool_usage_error(tool, "--json prints, --quiet does not");
  if (words.size() != 2) return tool_usage_error(tool, "give OLD and NEW");
  kvi_design_t designs[2];
  for (std::size_t i = 0; i < 2; ++i) {
    const kvi_loaded_t loaded = kvi_open_design(designs[i], std::string(words[i]));
    if (loaded.result != kvi_load_result::loaded) return complain(loaded.message);
  }
  const auto changes =
      kv_compare(kv_compared(kvi_netlist_t(designs[0])), kv_compared(kvi_netlist_t(designs[1])));
  for (std::size_t i = 0; i < 2; ++i) {
    if (!designs[i].is_unchanged()) return complain(kvi_changed_message(std::string(words[i])));
  }
  if (!quiet) {
    kv_output_t out(stdout);
    json ? kv_write_changes(changes, out) : write_lines(changes, shows_colours(), out);
  }
  if (tool_end(tool, 0) != 0) return trouble;
  return changes.empty() ? 0 : 1;
}
