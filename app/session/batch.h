// A session without a window and without a user: the commands of a file or of standard input run,
// and what they answer goes to standard output.
#pragma once

#include <span>
#include <string_view>

struct kv_batch_t {
  bool quiet = false;             // of the lines only errors and warnings are printed
  bool json = false;              // an object is printed for each command line
  std::string_view mark = {};     // printed after each answer; empty: nothing
  bool strict = false;            // a warning makes the status that of an error
  bool trace = false;             // the debug files are written
  const char* program = "";       // word 0 of the command line
  std::string_view design = {};   // its directory
  std::string_view do_file = {};  // "-": standard input
  std::span<const std::string_view> arguments = {};
};

inline constexpr std::size_t kv_most_arguments = 28;  // that DO takes after its file: 30 words

// The exit status: 0 when all went well, 1 when an error was shown or a line could not be written,
// kv_unusable_status with a message on standard error when it cannot start, and that
// of a session that a signal has ended.
int kv_run_batch(const kv_batch_t& batch);
