// The root of the program: one run from the command line to the summary.
#pragma once

#include <string>

// The whole run. Word 1 is the design directory, word 2 an optional start-up command file, the
// others its arguments. Returns after the session was closed and the summary printed.
void kivo_root(int argc, char** argv);

// The first phase of a run; the next ones are in app/session/root_session.h. Without a window
// (gx_vext.batch) it prints no banner.
void kv_open_debug_file();  // the arguments are stored and the design directory is named
void initparam_before();    // resets the application state

// The last phase.
void kv_print_summary();                 // the counts of errors and warnings, on standard output
int kv_exit_status(int without_signal);  // 128 and the signal that has ended the session

// The end of a run that cannot begin: the message on standard output and the given status; without
// a window on standard error and 2.
inline constexpr int kv_unusable_status = 2;
[[noreturn]] void kv_refuse_run(const std::string& message, int window_status);
