// Standard output of a batch: the lines of the list as they come.
#pragma once

#include <string>
#include <string_view>

#include "gx/text/messages/front.h"

struct kv_batch_form_t {
  bool quiet = false;          // of the lines only errors and warnings, with what belongs to them
  bool json = false;           // an object for each answer, instead of its lines
  std::string_view mark = {};  // a line after each answer; empty: none
};

// The front of a batch: each line of the list is printed in the form. A line leaves at the latest
// with the next one 50 ms later, or with a flush. Messages go to standard error.
//
// With `json` standard output is for the objects alone: what else the process or a program that it
// starts would print there goes to standard error.
const gx_front_t& kv_batch_lines(const kv_batch_form_t& form);

// Ends the answer to a command line; "" for what was reported before the first one.
void kv_end_batch_answer(std::string_view command, bool strict);

// False when lines were lost; the first loss is reported on standard error.
bool kv_flush_batch_output();

// The lines that were errors, and those that were warnings.
struct kv_batch_faults_t {
  int lines = 0;
  std::string first;
};
const kv_batch_faults_t& kv_batch_errors();
const kv_batch_faults_t& kv_batch_warnings();
