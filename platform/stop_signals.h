// Signals that ask the program to end: SIGHUP, SIGINT and SIGTERM, and SIGXFSZ (a file has grown to
// the limit of its size). They are noted; the program ends in order when it next looks.
#pragma once

// From now on they are noted. One that the program was started to ignore stays ignored; a second
// SIGHUP, SIGINT or SIGTERM ends the program at once.
void x_watch_stop_signals();
// The signal that came first; 0 for none.
int x_stop_signal();
// For the wait (platform/wait.h): can be read from once a signal has come, until that is forgotten;
// -1 before the watch. The signal itself stays noted.
int x_stop_descriptor();
void x_forget_stop_waking();

// A reader that goes away is an error of the write, not the end of the program.
void x_survive_broken_pipes();
