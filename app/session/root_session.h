// The second phase of a run, its parts in this order: the display, the files, the primary sheet,
// the session, and its end.
#pragma once

#include "app/session/front.h"

bool kv_open_session(const kv_front_t& front);  // false: no sheet to work on
void kv_begin_session();                        // the first picture
void kv_run_start_up_file();                    // its words reach DO as they are
bool kv_finish_session();  // closes the files and the window; false: the session file lost lines
