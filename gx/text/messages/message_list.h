// The message list: every line to the user. A line goes to the session file and, while the
// transcript is on, into 500 lines of scroll-back; the list viewport registers itself to draw them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "gx/text/messages/front.h"
#include "gx/text/records.h"

inline constexpr int gx_max_list_lines = 500;
inline constexpr int gx_max_text_length = 60;       // characters that a line of a viewport shows
inline constexpr std::size_t gx_list_columns = 57;  // of them the list has room for

struct gx_list_state_t {
  bool transcript_state = true;
  std::int16_t nb_line_in_listviewp = 0;
  std::int16_t nb_list_line_max = 0;  // at most gx_max_list_lines
  std::int16_t nlinlist_end = 0;      // last line of the list
  std::int16_t nlinlist_disp = 0;     // first line shown
  std::int16_t nlinlist_held = 0;  // the line that stays the first one shown; 0: the end is shown
  bool is_read = false;            // the user is at a line: a new command shows no end
  std::array<gx_string_record_t, gx_max_list_lines> line_list;  // line n at entry n - 1
  std::array<gx_line_kind, gx_max_list_lines> line_kind{};      // and what it means
  gx_line_kind worst = gx_line_kind::plain;                     // of all lines reported
};

// The part of gx_vext that this room and those above it may touch.
extern gx_list_state_t& gx_list;

// Reports one line (at most 199 characters are kept): always written to the session file; kept in
// the scroll-back and drawn while the transcript is on. An empty text does nothing.
void gx_display_list(std::string_view text, gx_line_kind kind = gx_line_kind::plain);

// The parts joined, as one line.
void gx_tell_parts(std::span<const std::string_view> parts, gx_line_kind kind);
template <typename... Part>
void gx_tell_as(gx_line_kind kind, const Part&... part) {
  const std::string_view parts[] = {std::string_view(part)...};
  gx_tell_parts(parts, kind);
}
template <typename... Part>
void gx_tell(const Part&... part) {
  gx_tell_as(gx_line_kind::plain, part...);
}
// A line that says more about the one before.
template <typename... Part>
void gx_tell_detail(const Part&... part) {
  gx_tell_as(gx_line_kind::detail, part...);
}

// Reports a text of any length in lines that the list shows whole, broken at blanks; the further
// ones begin with "#    ".
void gx_tell_wrapped(std::string_view text, gx_line_kind kind = gx_line_kind::plain);

// Counts an error or a warning for the session; the counters stop at their largest value.
void gx_count_kind(gx_line_kind kind);
inline void gx_count_error() { gx_count_kind(gx_line_kind::error); }
// A line that counts as what it is.
template <typename... Part>
void gx_report(gx_line_kind kind, const Part&... part) {
  gx_tell_as(kind, part...);
  gx_count_kind(kind);
}

// While one lives, lines are gathered, and written to the session file and drawn
// together at its end: for answers of many lines. One within another does nothing.
class gx_list_batch_t {
 public:
  gx_list_batch_t();
  ~gx_list_batch_t();
  gx_list_batch_t(const gx_list_batch_t&) = delete;
  gx_list_batch_t& operator=(const gx_list_batch_t&) = delete;

 private:
  bool is_outer_;
};

// Whether an open file is the session file, which is not read while it is written.
bool gx_is_session_file(int descriptor);

// Reports a text file line by line; false when it cannot be opened (errno says why) or is the
// session file itself. A text longer than the viewport stays there with its first line until
// gx_list_follow. `stop_asked` is asked now and then, true ends it there.
bool gx_display_file_invplist(std::string_view path, bool (*stop_asked)() = nullptr);

// The list shows its end again when the next line comes: a new command begins. While the user is
// at a line it stays where it is.
void gx_list_follow();
void gx_list_stay();  // the user is at a line, until
void gx_list_leave();

// What draws the list after it changed; none at first.
using gx_list_drawer_t = void (*)();
void gx_set_list_drawer(gx_list_drawer_t drawer);

// How many characters of a line the list viewport shows: 60, or as many as its letters leave room
// for.
int gx_list_width();
void gx_set_list_width(int columns);  // 20..199
bool gx_list_is_plain();              // it has the letters of the command line
// Where texts that are reported in several lines are broken.
std::size_t gx_list_break();
