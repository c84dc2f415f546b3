// The root of the program: one run from the command line to the summary.
#pragma once

#include <string>

// The whole run. Word 1 is the design directory, word 2 an optional start-up command file, the
// others its arguments. Returns after the session was closed and the summary printed.
void kivo_root(int argc, char** argv);

// The parts of a run, in this order. Without a window (gx_vext.batch) they make none and print no
// banner.
void kv_open_debug_file();    // the arguments are stored and the design directory is named
void initparam_before();      // resets the application state
bool kv_open_session();       // the window, the files of the run; false: no sheet to work on
void kv_begin_session();      // the first picture
void kv_run_start_up_file();  // its words reach DO as they are
void kv_run_session();        // these two, then the event loop
bool kv_finish_session();     // closes the files and the window; false: the session file lost lines
void kv_print_summary();      // the counts of errors and warnings, on standard output
int kv_exit_status(int without_signal);  // 128 and the signal that has ended the session

// The end of a run that cannot begin: the message on standard output and the given status; without
// a window on standard error and 2.
inline constexpr int kv_unusable_status = 2;
[[noreturn]] void kv_refuse_run(const std::string& message, int window_status);
