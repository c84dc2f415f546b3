#include "app/session/product_sets.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "gx/text/strings.h"
#include "gx/text/text_files.h"

namespace {

// The names of the sets there are, sorted.
std::vector<std::string> set_names(const kv_set_kind_t& kind) {
  const gx_string_record_t folder = gx_resolve_path(kind.folder);
  std::error_code error;
  std::vector<std::string> names;
  const std::filesystem::directory_iterator end;
  for (std::filesystem::directory_iterator at(gx_view(folder), error); !error && at != end;
       at.increment(error)) {
    const std::string file = at->path().filename().string();
    if (file.size() > kind.prefix.size() && file.starts_with(kind.prefix)) {
      names.push_back(file.substr(kind.prefix.size()));
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

std::vector<std::string> kv_set_choice(const kv_set_kind_t& kind) {
  const std::vector<std::string> names = set_names(kind);
  if (names.empty()) return {};
  // The prompt stays in the command line while the user types after it: it is one word.
  std::string prompt(kind.prompt);
  for (std::size_t i = 0; i < names.size(); ++i) prompt += (i == 0 ? ":" : "/") + names[i];
  const std::string folder(kind.folder);
  return {"SHOw FILe " + folder + "/list", "READln $VAR1 " + prompt + "?",
          std::string(kind.command) + " " + folder + "/" + std::string(kind.prefix) + "$VAR1"};
}

int kv_print_set_choice(const kv_set_kind_t& kind) {
  const std::vector<std::string> lines = kv_set_choice(kind);
  if (lines.empty()) {
    std::fprintf(stderr, "no sets in %s\n", gx_resolve_path(kind.folder).char_);
    return 1;
  }
  for (const std::string& line : lines) std::printf("%s\n", line.c_str());
  return 0;
}
