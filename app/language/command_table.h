// The vocabulary of the command language: one row a command.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "app/language/commands.h"

// What the interpreter still has to do after a command that it runs itself.
struct kv_outcome_t {
  bool unknown = false;    // answer with the unknown-command lines too
  bool ends_line = false;  // the rest of the command line is not processed
};
using kv_own_handler_t = kv_outcome_t (*)(const kv_command_t& command);

struct kv_command_row_t {
  std::string_view initials;                 // the group of first letters that the row belongs to
  std::array<std::string_view, 3> keywords;  // least words 1, 2 and 3; empty: any or none
  std::size_t exact = 0;                     // characters of word 1; 0: the keyword or longer
  std::string_view spelling;                 // canonical, the least part in capitals
  kv_handler_t handler = nullptr;            // with no handler the command answers as unknown
  kv_own_handler_t own = nullptr;            // of a command of the interpreter itself
};

std::span<const kv_command_row_t> kv_command_table();

// The first row that the words match; null when there is none.
const kv_command_row_t* kv_find_command(const kv_command_t& command);

// Whether commands of some group begin with the character.
bool kv_begins_command(char c);

// --- commands of the interpreter itself (commands_own.cpp)
kv_outcome_t kv_assign(const kv_command_t& command);
kv_outcome_t kv_system(const kv_command_t& command);
kv_outcome_t kv_move(const kv_command_t& command);  // unknown when the word names no move
