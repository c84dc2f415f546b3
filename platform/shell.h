// Shell commands. A process that must not start other processes turns them off.
#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "platform/wait.h"

// A shell command with its standard output, from its start on. The command that was stopped is
// ended; what it left running in the background is not.
class x_shell {
 public:
  x_shell(const char* command, x_stop_asked_t stop_asked);
  ~x_shell();  // waits for the end of the command
  x_shell(const x_shell&) = delete;
  x_shell& operator=(const x_shell&) = delete;

  // The output; its end is also that of a stopped command. nullptr: the command was not started.
  std::FILE* output() const { return output_.get(); }
  bool is_stopped();  // asks

 private:
  x_stop_asked_t stop_asked_;
  bool stopped_ = false;
  pid_t process_ = -1;
  x_file output_;
};

// Runs the command and waits for it; its result is ignored.
void xshell_run(const char* command, const x_stop_asked_t& stop_asked);

// Runs a program with one argument, without a shell, and waits for it; its result is ignored.
void x_run_program(const char* program, const char* argument);

// The text as a shell takes it for one word.
std::string x_shell_word(std::string_view text);

// From now on nothing is started: a run does nothing, a command has no output.
void xshell_disable();
