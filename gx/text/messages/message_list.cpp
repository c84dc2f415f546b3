#include "gx/text/messages/message_list.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <deque>
#include <limits>
#include <string>

#include "gx/text/at.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "platform/files.h"

namespace {

constexpr std::size_t max_line_length = 199;
constexpr int lines_between_looks = 100;

int columns = gx_max_text_length;  // that the list viewport shows of a line
gx_list_drawer_t draw_list = nullptr;

struct line_t {
  std::string text;
  gx_line_kind kind;
};
std::deque<line_t> waiting;  // the last lines of a batch
bool is_batch = false;

void count(std::int16_t& counter) {
  if (counter < std::numeric_limits<std::int16_t>::max()) ++counter;
}

gx_string_record_t printable(std::string_view text) {
  gx_string_record_t line;
  for (const char c : text.substr(0, max_line_length))
    line.char_[line.len++] = c >= 32 && c <= 126 ? c : ' ';
  return line;
}

// Puts a line at the end of the scroll-back. A line longer than the viewport is wide takes two
// slots: it goes into the second, the first keeps what it held.
void keep(std::string_view text, gx_line_kind kind) {
  auto& v = gx_list;
  const int slots = text.size() > static_cast<std::size_t>(gx_list_width()) ? 2 : 1;
  const int last = std::min<int>(v.nb_list_line_max, gx_max_list_lines);
  if (last < slots) return;
  int end = v.nlinlist_end + slots;
  if (end > last) {
    const auto first = v.line_list.begin();
    std::move(first + slots, first + last, first);
    const auto kinds = v.line_kind.begin();
    std::move(kinds + slots, kinds + last, kinds);
    if (v.nlinlist_held > 0)
      v.nlinlist_held = static_cast<std::int16_t>(std::max(v.nlinlist_held - (end - last), 1));
    end = last;
  }
  v.nlinlist_end = static_cast<std::int16_t>(end);
  gx_at(v.line_list, end - 1) = printable(text);
  gx_at(v.line_kind, end - 1) = kind;
}

void show_end() {
  auto& v = gx_list;
  const int last_page = std::max(v.nlinlist_end - v.nb_line_in_listviewp + 1, 1);
  v.nlinlist_disp = static_cast<std::int16_t>(
      v.nlinlist_held > 0 ? std::min<int>(v.nlinlist_held, last_page) : last_page);
  if (draw_list != nullptr) draw_list();
}

// In the scroll-back.
bool is_kept() { return gx_list.transcript_state && gx_front().keeps_lines; }

// A session file that takes no more, of a full disk say, is reported once until it takes lines
// again.
void tell_lost_session() {
  auto& session = gx_session;
  const bool was_lost = session.cursess_lost;
  session.cursess_lost = std::ferror(session.cursessfile) != 0;
  if (!session.cursess_lost) return;
  const int error = session.cursess_error = errno;
  if (gx_front().keeps_lines) std::clearerr(session.cursessfile);
  if (was_lost) return;
  gx_count_error();
  if (!gx_front().keeps_lines)
    return gx_complain(std::string(gx_view(session.cursessname)) + ": " + x_why(error));
  keep(std::string("# !! Error : impossible to write the session file : \"")
           .append(gx_view(session.cursessname))
           .append("\" : ")
           .append(x_why(error)),
       gx_line_kind::error);
}

// The file is read while the session goes on, and after one that ended badly: what a user sees is
// in it.
void end_session_lines() {
  auto& session = gx_session;
  if (session.cursessfile == nullptr) return;
  if (gx_front().keeps_lines && !is_batch) std::fflush(session.cursessfile);
  tell_lost_session();
}

void write_to_session(std::string_view text) {
  auto& session = gx_session;
  if (session.cursessfile == nullptr) return;
  std::fwrite(text.data(), 1, text.size(), session.cursessfile);
  std::fputc('\n', session.cursessfile);
  end_session_lines();
}

void record(std::string_view text, gx_line_kind kind) {
  gx_list.worst = std::max(gx_list.worst, kind);
  write_to_session(text);
  if (gx_front().take_line != nullptr) gx_front().take_line(text, kind);
}

}  // namespace

void gx_display_list(std::string_view text, gx_line_kind kind) {
  text = text.substr(0, max_line_length);
  if (text.empty()) return;
  record(text, kind);
  if (!is_kept()) return;
  if (is_batch) {
    waiting.push_back({std::string(text), kind});
    if (waiting.size() > gx_max_list_lines) waiting.pop_front();
    return;
  }
  keep(text, kind);
  show_end();
}

gx_list_batch_t::gx_list_batch_t() : is_outer_(!is_batch) { is_batch = true; }

gx_list_batch_t::~gx_list_batch_t() {
  if (!is_outer_) return;
  is_batch = false;
  end_session_lines();
  for (const auto& [text, kind] : waiting) keep(text, kind);
  if (!waiting.empty()) show_end();
  waiting.clear();
}

void gx_tell_parts(std::span<const std::string_view> parts, gx_line_kind kind) {
  std::string line;
  for (const std::string_view part : parts) line += part;
  gx_display_list(line, kind);
}

void gx_tell_wrapped(std::string_view text, gx_line_kind kind) {
  constexpr std::string_view further = "#    ";
  std::string line;
  const std::size_t columns = gx_list_break();
  while (line.size() + text.size() > columns) {
    const std::size_t room = columns - line.size();
    const std::size_t words = std::min(text.find_first_not_of("# "), text.size());
    std::size_t length = text.rfind(' ', room);
    if (length == text.npos || length <= words) length = room;
    gx_display_list(line + std::string(text.substr(0, length)), kind);
    text.remove_prefix(length);
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    line = further;
    if (kind != gx_line_kind::plain) kind = gx_line_kind::detail;
  }
  if (!text.empty()) gx_display_list(line + std::string(text), kind);
}

// The listing of a session file would itself make it grow.
bool gx_is_session_file(int descriptor) {
  struct stat file {};
  struct stat session {};
  return gx_session.cursessfile != nullptr && ::fstat(descriptor, &file) == 0 &&
         ::fstat(::fileno(gx_session.cursessfile), &session) == 0 &&
         file.st_dev == session.st_dev && file.st_ino == session.st_ino;
}

bool gx_display_file_invplist(std::string_view path, bool (*stop_asked)()) {
  const x_file file(gx_popen_file(path, 'R', true));
  const int error = file ? 0 : errno;
  if (!file || gx_is_session_file(::fileno(file.get()))) {
    gx_trace("!!! display_file  file not found : \"", path, "\"");
    errno = error;
    return false;
  }
  gx_list.nlinlist_held = 0;
  gx_string_record_t line;
  for (int n = 0; gx_read_one_line(file.get(), line); ++n) {
    if (n % lines_between_looks == 0 && stop_asked != nullptr && stop_asked()) break;
    gx_string_record_t shown;
    gx_concat_all(shown, "# \"", gx_view(line), "\" ");
    record(gx_view(shown), gx_line_kind::plain);
    if (!is_kept()) continue;
    keep(gx_view(shown), gx_line_kind::plain);
    if (gx_list.nlinlist_held == 0) gx_list.nlinlist_held = gx_list.nlinlist_end;
  }
  if (is_kept()) show_end();  // once: only one page stays in sight
  return true;
}

void gx_list_follow() {
  if (!gx_list.is_read) gx_list.nlinlist_held = 0;
}

void gx_list_stay() {
  gx_list.is_read = true;
  gx_list.nlinlist_held = std::max<std::int16_t>(gx_list.nlinlist_disp, 1);
}

void gx_list_leave() { gx_list.is_read = false; }

void gx_count_kind(gx_line_kind kind) {
  if (kind == gx_line_kind::error) {
    ++gx_session.errors_in_all;
    count(gx_session.num_errors);
  } else if (kind == gx_line_kind::warning) {
    count(gx_session.num_warnings);
  }
}

void gx_set_list_drawer(gx_list_drawer_t drawer) { draw_list = drawer; }

int gx_list_width() { return columns; }

void gx_set_list_width(int wanted) { columns = std::clamp(wanted, 20, gx_max_string_length - 1); }

bool gx_list_is_plain() { return columns == gx_max_text_length; }

std::size_t gx_list_break() {
  return gx_list_columns + static_cast<std::size_t>(std::max(columns - gx_max_text_length, 0));
}
