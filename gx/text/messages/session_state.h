// What the session as a whole knows: its streams, its counters, its command line.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "gx/text/arguments.h"
#include "gx/text/records.h"

struct gx_session_state_t {
  std::FILE* debugfile = nullptr;    // owned by the application
  std::FILE* cursessfile = nullptr;  // session transcript, owned by the application
  gx_string_record_t cursessname;    // its path
  bool cursess_lost = false;         // it takes no more lines; this was reported
  int cursess_error = 0;             // why lines were lost, the last time
  std::int16_t num_errors = 0;       // of the whole session
  std::int16_t num_warnings = 0;
  std::int64_t errors_in_all = 0;  // goes on where num_errors stops
  bool all_init_done = false;      // start-up is complete
  bool end_flag = false;           // BYE or QUIT was given
  std::int32_t nb_arg_comline = 0;
  std::array<gx_string_record_t, gx_max_arg_comline> argcomline;
  std::int16_t do_ind = 0;  // nesting of command files
  std::array<std::FILE*, 10> commandfile{};
  bool init_done = false;  // gx_init or gx_init_nograph was done
};

// The part of gx_vext that this room and those above it may touch.
extern gx_session_state_t& gx_session;
