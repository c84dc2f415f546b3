#include "app/session/input/recall.h"

#include <fcntl.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

#include "app/session/installation.h"
#include "app/state.h"
#include "gx/display/input/line_edit.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "platform/files.h"

namespace {
namespace fs = std::filesystem;

constexpr std::size_t largest_file = std::size_t{1} << 20U;
constexpr mode_t own_file = 0600;

// Empty when nobody knows the user's place. Only absolute paths count.
fs::path state_file() {
  fs::path directory = kv_environment("XDG_STATE_HOME");
  if (!directory.is_absolute()) directory = fs::path(kv_environment("HOME")) / ".local" / "state";
  if (!directory.is_absolute()) return {};
  return directory / "kivo" / "typed_lines";
}

void keep_newest(std::vector<std::string>& lines) {
  if (lines.size() > kv_most_typed_lines)
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(kv_most_typed_lines));
}

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\n");
  return text;
}

// What a line of the file may be; other lines were not typed.
bool is_typed(std::string_view line) {
  return !gx_is_blank(line) && line.size() < gx_max_string_length - 1 &&
         std::ranges::all_of(line, [](char c) { return c >= ' ' && c <= '~'; });
}

// The lines of earlier sessions. Of a file that has grown too long the newest are left.
void read_lines(kv_recall_state_t& recall) {
  recall.is_read = true;
  const fs::path path = state_file();
  std::string bytes;
  if (path.empty() || !x_read_regular(path.string(), bytes, largest_file)) return;
  std::size_t count = 0;
  for (std::string_view rest = bytes; !rest.empty(); ++count) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (is_typed(line)) recall.lines.emplace_back(line);
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  keep_newest(recall.lines);
  if (count > 2 * kv_most_typed_lines) x_replace_file(path.string(), joined(recall.lines));
}

// At the end of the file, so that sessions at the same time lose nothing.
void write_line(std::string_view line) {
  const fs::path path = state_file();
  if (path.empty()) return;
  std::error_code error;
  fs::create_directories(path.parent_path(), error);
  const x_descriptor file(xfopen(
      path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, own_file));
  if (!file) return;
  const std::string bytes = std::string(line) + "\n";
  xfwrite(file.get(), bytes.data(), bytes.size());
}

bool has_user() { return gx_vext.screen != nullptr; }

kv_recall_state_t& recall_state() {
  kv_recall_state_t& recall = kv_pext;
  if (has_user() && !recall.is_read) read_lines(recall);
  return recall;
}
}  // namespace

void kv_remember_typed(std::string_view line) {
  auto& recall = recall_state();
  recall.back = 0;
  const auto first = std::min(line.find_first_not_of(' '), line.size());
  line.remove_prefix(first);
  if (!is_typed(line) || (!recall.lines.empty() && recall.lines.back() == line)) return;
  recall.lines.emplace_back(line);
  keep_newest(recall.lines);
  if (has_user()) write_line(line);
}

void kv_recall(bool back) {
  auto& recall = recall_state();
  if (recall.back == (back ? recall.lines.size() : 0)) return;
  if (recall.back == 0) recall.draft = gx_view(gx_vext.str_cmd);
  if (back) {
    ++recall.back;
  } else {
    --recall.back;
  }
  gx_set_command_line(recall.back == 0 ? recall.draft
                                       : recall.lines[recall.lines.size() - recall.back]);
}
