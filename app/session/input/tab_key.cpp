#include "app/session/input/tab_key.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "app/find/next_names.h"
#include "app/language/next_word.h"
#include "app/state.h"
#include "gx/display/input/line_edit.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"

namespace {
namespace fs = std::filesystem;

constexpr std::string_view separators = " ,";
constexpr std::size_t most_listed = 60;

// What the line says up to the caret: the words before the one that is begun, and that one.
struct begun_t {
  std::string head;  // of the line, up to the word
  std::vector<std::string> before;
  std::string word;
};

begun_t begun_word(std::string_view line) {
  begun_t begun;
  const auto semicolon = line.rfind(';');
  std::size_t start = semicolon == line.npos ? 0 : semicolon + 1;
  for (;;) {
    start = std::min(line.find_first_not_of(separators, start), line.size());
    const auto end = std::min(line.find_first_of(separators, start), line.size());
    if (end == line.size()) break;
    begun.before.emplace_back(line.substr(start, end - start));
    start = end;
  }
  begun.head = line.substr(0, start);
  begun.word = line.substr(start);
  return begun;
}

bool begins(std::string_view text, std::string_view head) { return gx_equal(head, text); }

// What may complete the word; a name that goes on is written without a blank after it.
struct choice_t {
  std::string text;
  bool goes_on = false;
};

void add(std::vector<choice_t>& choices, std::string text, bool goes_on) {
  const bool is_there =
      std::ranges::any_of(choices, [&](const choice_t& one) { return gx_iden(one.text, text); });
  if (!is_there) choices.push_back({std::move(text), goes_on});
}

// Files of a directory, with a "/" after directories. `typed` is a path that ends within a name.
void add_files(std::vector<choice_t>& choices, std::string_view typed) {
  const auto slash = typed.rfind('/');
  const std::string head(typed.substr(0, slash == typed.npos ? 0 : slash + 1));
  const std::string_view part = typed.substr(head.size());
  const gx_string_record_t folder = gx_resolve_path(head.empty() ? "." : head);
  std::error_code error;
  const fs::directory_iterator end;
  for (fs::directory_iterator at(gx_view(folder), error); !error && at != end;
       at.increment(error)) {
    const std::string name = at->path().filename().string();
    const bool is_typeable = std::ranges::all_of(name, [](char c) { return c > ' ' && c <= '~'; });
    if (!is_typeable || !name.starts_with(part) || (part.empty() && name.starts_with('.')))
      continue;
    std::error_code none;
    const bool is_directory = fs::is_directory(at->path(), none);
    choices.push_back({head + name + (is_directory ? "/" : ""), is_directory});
  }
  std::ranges::sort(choices, {}, &choice_t::text);
}

// The blocks of the sheet in view.
void add_blocks(std::vector<choice_t>& choices, const std::string& typed) {
  std::string sheet(gx_view(kv_pext.cur_sim_path));
  if (!sheet.starts_with('/')) sheet.insert(0, 1, '/');
  for (const auto& [path, goes_on] : kv_next_names(sheet + typed))
    if (goes_on) add(choices, path.substr(sheet.size(), path.size() - sheet.size() - 1), false);
}

std::vector<choice_t> choices_of(const begun_t& begun) {
  std::vector<choice_t> choices;
  const kv_wanted_word_t wanted = kv_wanted_word(begun.before);
  for (const std::string_view keyword : wanted.keywords)
    if (begins(keyword, begun.word)) add(choices, std::string(keyword), false);
  if (wanted.is_path)
    for (auto& [path, goes_on] : kv_next_names(begun.word)) add(choices, std::move(path), goes_on);
  if (wanted.is_block) add_blocks(choices, begun.word);
  if (wanted.is_file) add_files(choices, begun.word);
  return choices;
}

std::string in_common(const std::vector<choice_t>& choices) {
  std::string common = choices.front().text;
  for (const choice_t& choice : choices) {
    std::size_t same = 0;
    while (same < std::min(common.size(), choice.text.size()) &&
           gx_upper_case(common[same]) == gx_upper_case(choice.text[same]))
      ++same;
    common.resize(same);
  }
  return common;
}

void list(const std::vector<choice_t>& choices) {
  std::string line = "#";
  for (std::size_t i = 0; i < std::min(choices.size(), most_listed); ++i)
    line += " " + choices[i].text;
  const gx_list_batch_t batch;
  gx_list_follow();
  gx_tell_wrapped(line);
  if (choices.size() > most_listed)
    gx_tell("# ... and ", std::to_string(choices.size() - most_listed), " more ");
}
}  // namespace

void kv_complete_typed() {
  const std::string line(gx_view(gx_vext.str_cmd));
  const auto caret = static_cast<std::size_t>(gx_caret() - 1);
  const begun_t begun = begun_word(std::string_view(line).substr(0, caret));
  const auto choices = choices_of(begun);
  if (choices.empty()) return;
  std::string word = in_common(choices);
  if (choices.size() == 1 && !choices.front().goes_on) word += " ";
  if (choices.size() > 1 && word.size() <= begun.word.size()) return list(choices);
  const std::string before = begun.head + word;
  if (before.size() + line.size() - caret >= gx_max_string_length - 1) return;
  gx_set_command_line(before + line.substr(caret), static_cast<int>(before.size()) + 1);
}
