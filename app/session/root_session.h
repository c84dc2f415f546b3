// The second phase of a run, its parts in this order: the window, the files, the primary sheet, the
// session, and its end. Without a window (gx_vext.batch) they make none.
#pragma once

void kv_open_engine_trace();  // the engine's, in the current directory; in a batch when asked for
bool kv_open_session();       // the window, the files of the run; false: no sheet to work on
void kv_begin_session();      // the first picture
void kv_run_start_up_file();  // its words reach DO as they are
void kv_run_session();        // these two, then the event loop
bool kv_finish_session();     // closes the files and the window; false: the session file lost lines
