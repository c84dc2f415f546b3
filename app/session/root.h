// The root of the program: one run from its words to its end, in one shape for every front.
#pragma once

#include <span>
#include <string>

#include "app/session/front.h"

// The whole run, whose front is the present one (gx_set_front). Word 1 is the design directory,
// word 2 an optional start-up command file, the others its arguments. The result is the status of
// the process.
int kv_run(const kv_front_t& front, std::span<const char* const> words);

void initparam_before();  // a fresh application state

void kv_print_summary();                 // the counts of errors and warnings, on standard output
int kv_exit_status(int without_signal);  // 128 and the signal that has ended the session

// The end of a run that cannot begin.
[[noreturn]] void kv_refuse_run(std::string_view message);
