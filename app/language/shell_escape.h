// Shell commands of the command line.
#pragma once

#include <string_view>

// Runs a shell command (1..508 characters) and then each line of its output as a command line.
void kv_exec_cmd(std::string_view text);
