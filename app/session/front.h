// What a session asks of the one at its other end, besides what the rooms below ask (gx_front_t).
// There are two: a user at a window (app/session/window_front.h) and a batch (app/session/batch.h).
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "gx/display/screen_state.h"
#include "gx/text/messages/front.h"

// How a session went.
struct kv_ended_t {
  bool had_sheet = true;    // there was one to work on
  bool all_read = true;     // of the commands
  bool all_written = true;  // of the session file
};

struct kv_front_t {
  const gx_front_t& lines;
  bool greets = true;  // the banner goes to standard output
  bool traces = true;  // the debug files are written
  bool takes_empty_words =
      false;  // as arguments of the start-up file; else the first one ends them
  std::function<void(std::span<const gx_viewport_init_rec_t>, std::string_view title)> open_display;
  // Ends the process before its session: a file cannot be opened. `said` is the whole message, with
  // its line end, of one who sees `what` and `name` nowhere else.
  std::function<void(const std::string& said, const std::string& refusal)> refuse_start;
  std::function<bool()> answer;  // all commands, until the session ends; false: not all were read
  std::function<int(const kv_ended_t&)> end;  // the files are closed: the status of the process
};
