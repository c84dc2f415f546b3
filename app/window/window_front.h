// The session of a user at a window.
#pragma once

// The whole run on the X display, with the words of the command line. The result is the status of
// the process.
int kivo_root(int argc, char** argv);
