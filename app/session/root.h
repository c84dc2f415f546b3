// The root of the program: one run from the command line to the summary.
#pragma once

// The whole run. Word 1 is the design directory, word 2 an optional start-up command file, the
// others its arguments. Returns after the session was closed and the summary printed.
void kivo_root(int argc, char** argv);

// The parts of a run, in this order.
void kv_open_debug_file();  // the arguments are stored and the design directory is named
void initparam_before();    // resets the application state
void kv_open_session();     // the window, the files of the run, the primary sheet
void kv_run_session();      // first picture, start-up command file, event loop
void kv_finish_session();   // closes the files and the window
