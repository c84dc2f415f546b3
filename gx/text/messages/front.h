// The front of a session: who is at its other end, a user at a window or the one who reads what a
// batch prints. The program chooses it once, before anything else (app/session/front.h).
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// What a line means to the one who reads it; the worse the larger. A detail says more about the
// warning or error before.
enum class gx_line_kind : std::uint8_t { plain, detail, warning, error };

// The defaults are those of a user at a window.
struct gx_front_t {
  // Gets each line at once; nullptr: the list alone shows it.
  void (*take_line)(std::string_view line, gx_line_kind kind) = nullptr;
  // The user looks back at the lines and into the session file: the scroll-back keeps them, and
  // each line is in the file at once.
  bool keeps_lines = true;
  void (*flush)() = nullptr;  // the lines so far reach their reader now
  // A line about what is under way, in the place of the one before it and no line of the list; ""
  // when it is over. nullptr: no one waits for it.
  void (*show_progress)(std::string_view line) = nullptr;
  bool shows_pictures = true;
  bool may_wait = true;  // for the eyes of a user and for slow servers
  // Asked while something lasts: whether it is to stop. A signal that ends the program is no
  // matter of the front.
  bool (*stop_asked)() = nullptr;

  // Messages that are no lines of the list.
  std::FILE* (*messages)() = [] { return stdout; };
  std::string_view message_head = "";  // of those that a command-line program would print
  int refused_status = EXIT_SUCCESS;   // of a session that cannot begin
  bool ends_without_file = true;       // one that gx_popen_file has found and cannot open
  // A fatal stop aborts, so that there is a core to look into; other stops have this status.
  bool aborts = true;
  int stop_status = EXIT_FAILURE;
};

// That of the process. It outlives the session.
inline constexpr gx_front_t gx_user_front;
inline const gx_front_t* gx_present_front = &gx_user_front;
inline const gx_front_t& gx_front() { return *gx_present_front; }
inline void gx_set_front(const gx_front_t& front) { gx_present_front = &front; }

void gx_pause(int ms);                       // where it may wait
void gx_complain(std::string_view message);  // as one line of the front's messages
