// One command as its file describes it: how it is written, what refuses it, what runs it.
//
// A commands file ends with the rows of its commands; the command table (command_table.h) joins
// them. The syntax line is what users read in the help texts and in the manual page, and the word
// counts that the interpreter accepts come from it.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "app/language/answers.h"
#include "app/language/interpreter.h"

// What the interpreter still has to do after a command that decides about its line.
struct kv_outcome_t {
  bool unknown = false;    // answer with the unknown-command lines too
  bool ends_line = false;  // the rest of the command line is not processed
};
using kv_handler_t = void (*)(const kv_command_t& command);
using kv_deciding_handler_t = kv_outcome_t (*)(const kv_command_t& command);

// The word counts that a syntax line stands for: bit n is set when n words are right, n at most 30.
// Words in brackets may be left out, "a or b" is one word, and "..." repeats the word before it.
constexpr std::uint32_t kv_counts_of(std::string_view syntax) {
  constexpr auto most_words = static_cast<int>(kv_max_words);
  std::array<std::uint32_t, 8> left_out{};  // the counts at each open bracket
  std::size_t depth = 0;
  std::uint32_t counts = 1;
  bool is_alternative = false;
  while (!syntax.empty()) {
    std::string_view word = syntax.substr(0, syntax.find(' '));
    syntax.remove_prefix(word.size() < syntax.size() ? word.size() + 1 : word.size());
    for (; word.starts_with('['); word.remove_prefix(1)) left_out[depth++] = counts;
    std::size_t closed = 0;
    for (; word.ends_with(']'); word.remove_suffix(1)) ++closed;
    if (word == "or") {
      is_alternative = true;
      continue;
    }
    if (word == "...") {
      for (int n = 0; n < most_words; ++n) counts |= counts << 1U;
    } else if (!is_alternative) {
      counts <<= 1U;
    }
    is_alternative = false;
    for (; closed > 0; --closed) counts |= left_out[--depth];
  }
  return counts & ((1U << (most_words + 1)) - 1);
}

// The word counts up to `most`.
constexpr std::uint32_t kv_at_most(int most) { return (2U << most) - 1; }

inline constexpr int kv_no_words = kv_max_words + 1;  // of first_echoed: the refusal shows no word

struct kv_command_row_t {
  std::array<std::string_view, 3> keywords;  // least words 1, 2 and 3; empty: any or none
  std::string_view syntax;                   // one line; of keywords the least part in capitals
  kv_handler_t handler = nullptr;
  // Another count of words is refused with this keyword and the words from `first_echoed` on.
  // Empty: any count will do.
  std::string_view refusal = {};
  int first_echoed = 2;
  std::size_t exact = 0;  // characters of word 1; 0: the keyword or longer
  std::uint32_t counts = kv_counts_of(syntax);
  bool ends_rectangle = false;               // a refusal, too, ends a rubber rectangle
  decltype(&kv_refuse) refuse = kv_refuse;   // another way to say the refusal
  kv_deciding_handler_t deciding = nullptr;  // instead of `handler`
  kv_outcome_t refused = {};                 // of a deciding one after its refusal

  constexpr bool takes(int words) const { return (counts >> words & 1U) != 0; }
};
using kv_command_rows_t = std::span<const kv_command_row_t>;

// The rows of each commands file.
kv_command_rows_t kv_session_commands();     // session/commands_session
kv_command_rows_t kv_check_commands();       // check/check_sheet
kv_command_rows_t kv_finding_commands();     // check/commands_findings
kv_command_rows_t kv_condition_commands();   // values/commands_condition
kv_command_rows_t kv_difference_commands();  // check/commands_difference
kv_command_rows_t kv_expand_commands();      // run/commands_expand
kv_command_rows_t kv_explain_commands();     // find/commands_explain
kv_command_rows_t kv_file_commands();        // language/commands_files
kv_command_rows_t kv_find_commands();        // find/commands_find
kv_command_rows_t kv_grid_commands();        // sheet/commands_grid
kv_command_rows_t kv_hierarchy_commands();   // find/commands_hierarchy
kv_command_rows_t kv_highlight_commands();   // find/commands_highlight
kv_command_rows_t kv_key_commands();         // session/commands_keys
kv_command_rows_t kv_mark_commands();        // sheet/commands_mark
kv_command_rows_t kv_menu_commands();        // session/commands_menu
kv_command_rows_t kv_move_commands();        // sheet/pan
kv_command_rows_t kv_navigate_commands();    // sheet/commands_navigate
kv_command_rows_t kv_select_commands();      // sheet/commands_select
kv_command_rows_t kv_name_commands();        // sheet/commands_select_name
kv_command_rows_t kv_shown_commands();       // values/commands_shown
kv_command_rows_t kv_tree_commands();        // session/commands_tree
kv_command_rows_t kv_simulator_commands();   // values/commands_simulator
kv_command_rows_t kv_status_commands();      // sheet/commands_status
kv_command_rows_t kv_values_commands();      // values/commands_values
kv_command_rows_t kv_variable_commands();    // language/commands_variables
kv_command_rows_t kv_view_commands();        // sheet/commands_view
