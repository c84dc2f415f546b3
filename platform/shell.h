// Shell commands. A process that must not start other processes turns them off.
#pragma once

#include <cstdio>

// Runs the command and waits for it; its result is ignored.
void xshell_run(const char* command);

// Starts the command and gives its standard output, closed with xshell_close. nullptr when it
// cannot be started.
std::FILE* xshell_open(const char* command);
void xshell_close(std::FILE* output);

// From now on commands are not started: a run does nothing, an opening fails.
void xshell_disable();
