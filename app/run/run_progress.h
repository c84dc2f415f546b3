// A long run, as the one who waits for it sees it: a line in the place of the command line, which
// is no line of the list and so not of the session file. Control+A stops the run.
#pragma once

#include "expand/run/run.h"

// The watcher of runs (kv_run_t). It shows nothing of a run that does not last 2 seconds.
bool kv_watch_run(const kv_progress_t& progress);
