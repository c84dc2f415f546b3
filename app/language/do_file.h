// Command files: each runs with tables of its own, up to 10 deep in each other.
#pragma once

#include <memory>

#include "app/language/command.h"

// DO file [word ...]
void kv_do_cmd(const kv_command_t& command);

// Runs a command file that is given as words and not as a text, so that no word is split, quoted or
// substituted: a path and at most 28 words more.
void kv_do_words(std::span<const gx_string_record_t> words, kv_array_param_t& args,
                 kv_array_param_t& vars);

// The words after the second one, as $ARG1... of what is called.
std::unique_ptr<kv_array_param_t> kv_arguments(const kv_command_t& command);

// A line of the user: what it does to the depth of command files ends with it.
void kv_process_line(const gx_string_record_t& line, kv_array_param_t& args,
                     kv_array_param_t& vars);
