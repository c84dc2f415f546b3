// The command interpreter: a command line becomes commands, a command words, and the words a call.
#include "app/language/interpreter.h"

#include <algorithm>

#include "app/language/answers.h"
#include "app/language/command_table.h"
#include "app/language/shell_escape.h"
#include "app/language/substitution.h"
#include "gx/display/input/cursor.h"
#include "gx/display/input/events.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/front.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "gx/text/tokens.h"
#include "gx/vext.h"
#include "platform/stop_signals.h"

namespace {
constexpr int max_pieces = 30;
constexpr std::int32_t least_reference = 5;  // "$ARG1"
constexpr std::string_view piece_separators = ";", word_separators = " ,";
// Words that begin otherwise are reported in the trace.
constexpr std::string_view command_letters = "$ABCDEFGHIKLMNOPQRSTUVWXYZ";

// Command files, shell output and menus call the interpreter again. No session needs this many
// levels; a shell command whose output runs itself would have no end.
constexpr int max_depth = 64;

struct depth_guard {
  static inline int depth = 0;
  depth_guard() { ++depth; }
  ~depth_guard() { --depth; }
};

void set_executing(bool on) {
  gx_vext.cmd_executing = on;
  gx_cursor_active();
}

void normalise(kv_array_param_t& table) {
  for (auto& entry : table) gx_rest_string(entry);
}

// Puts the values of one table into the piece.
void substitute(gx_string_record_t& piece, std::string_view letters,
                const kv_array_param_t& values) {
  if (piece.len < least_reference) return;
  const kv_substitution_t result = kv_substitute(piece, letters, values);
  piece = result.text;
  if (result.valid) return;
  gx_tell_as(gx_line_kind::error, "# Error on : \"", gx_view(piece), "\" ");
  gx_tell_detail("# Found invalid ", letters, "(n) in command line ");
}

void show_unknown(const gx_string_record_t& piece) {
  gx_tell_as(gx_line_kind::error, "#  !!! Unknown Command  ?? ");
  gx_tell_detail("# \"", gx_view(piece), "\" ");
}

bool is_quote(char c) { return c == '\'' || c == '"'; }

// Where the shell escape that begins at `start` ends: at a ";" that the shell would not take for a
// letter.
std::size_t shell_piece_end(std::string_view text, std::size_t start) {
  char quote = 0;
  for (std::size_t i = start; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\\' && quote != '\'') {
      ++i;
    } else if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (is_quote(c)) {
      quote = c;
    } else if (c == ';') {
      return i;
    }
  }
  return quote != 0 ? std::min(text.find(';', start), text.size()) : text.size();
}

// Where the command that begins at `start` ends: at a ";" outside quoted words.
std::size_t command_piece_end(std::string_view text, std::size_t start) {
  std::size_t i = start;
  for (; i < text.size() && text[i] != ';'; ++i) {
    const bool begins_word = i == start || word_separators.find(text[i - 1]) != text.npos;
    if (!is_quote(text[i]) || !begins_word) continue;
    if (const auto closing = text.find(text[i], i + 1); closing != text.npos) i = closing;
  }
  return i;
}

// The next piece of a line, as the token reader gives it, with quoted texts kept whole.
gx_string_record_t next_piece(const gx_string_record_t& line, std::int32_t& pos) {
  const std::string_view text = gx_view(line);
  const auto start =
      std::min(text.find_first_not_of(';', static_cast<std::size_t>(pos - 1)), text.size());
  const auto first = std::min(text.find_first_not_of(' ', start), text.size());
  const bool is_shell = first < text.size() && text[first] == '!';
  const auto end = is_shell ? shell_piece_end(text, start) : command_piece_end(text, start);
  gx_string_record_t piece;
  if (end == std::min(text.find(';', start), text.size())) {
    gx_rd_string_t(line, piece_separators, piece, pos);
  } else {
    piece = gx_string(text.substr(start, end - start));
    pos = static_cast<std::int32_t>(end) + 2;
  }
  return piece;
}

bool begins_command(char c) {
  return command_letters.find(gx_upper_case(c)) != std::string_view::npos;
}

// Runs the command that the words mean, unless their number is wrong.
kv_outcome_t run_command(const kv_command_t& command) {
  const kv_command_row_t* row = kv_find_command(command);
  if (row == nullptr) {
    if (!begins_command(command.word(1).front()))
      gx_debug(" KV_PROCESS_COMMAND  : BAD First CHAR !! \n");
    return {.unknown = true};
  }
  if (!row->refusal.empty() && !row->takes(command.count())) {
    if (row->ends_rectangle) kv_pext.mark_rect_done = false;
    row->refuse(row->refusal, command, kv_bad_count, row->first_echoed);
    return row->refused;
  }
  if (row->deciding != nullptr) return row->deciding(command);
  row->handler(command);
  return {};
}

// Runs one piece of a line; true when the rest of its line is not to be processed.
bool run_piece(gx_string_record_t piece, kv_array_param_t& args, kv_array_param_t& vars) {
  std::int32_t start = 1;
  const char first = gx_findchar(piece, " ", start);
  if (first == '#') return true;
  if (first == '!') {
    kv_exec_cmd(gx_view(piece).substr(static_cast<std::size_t>(start)));
    return false;
  }
  substitute(piece, "$ARG", args);
  kv_words_t words;
  kv_split_words(piece, words, 1);
  // These two name a variable as their target.
  if (!gx_equal("ASSI", words.first()) && !gx_equal("READ", words.first()))
    substitute(piece, "$VAR", vars);
  kv_split_words(piece, words);
  if (words.count == 0) return false;
  if (words.first().front() == '#') return true;

  gx_list_follow();
  const kv_command_t command{words.all(), args, vars};
  const kv_outcome_t outcome = run_command(command);
  if (outcome.unknown) show_unknown(piece);
  return outcome.ends_line;
}
}  // namespace

void kv_process_command(const gx_string_record_t& line, kv_array_param_t& args,
                        kv_array_param_t& vars) {
  gx_string_record_t text = line;
  gx_rest_string(text);
  normalise(args);
  normalise(vars);
  if (text.len < 1) {
    gx_debug(" KV_PROCESS_COMMAND :  cmd[0]:%d  len:%d \n", text.char_[0], text.len);
    set_executing(false);
    return;
  }
  gx_debug(" KV_PROCESS_COMMAND :  cmd :\"%.*s\"\n", text.len, text.char_);
  const depth_guard guard;
  if (guard.depth > max_depth) {
    return gx_report(gx_line_kind::error, "# !!! Error : too many nested commands : \"",
                     gx_view(text), "\" ");
  }
  set_executing(true);
  std::int32_t pos = 1;
  for (int pieces = 0; pieces < max_pieces && pos <= kv_last_position; ++pieces) {
    // An empty piece ends the line; the token reader would pass over it.
    if (pos > text.len || gx_view(text).substr(static_cast<std::size_t>(pos - 1)).starts_with(";;"))
      break;
    const bool ends_line = run_piece(next_piece(text, pos), args, vars);
    set_executing(false);
    if (ends_line) break;
  }
  set_executing(false);
}

void kv_split_words(const gx_string_record_t& text, kv_words_t& words, std::size_t most) {
  words.count = 0;
  for (std::int32_t pos = 1; words.count < most && pos <= kv_last_position;) {
    gx_string_record_t& word = words.word[words.count];
    if (!gx_rd_string_t(text, word_separators, word, pos)) return;
    if (word.len > 0) ++words.count;
  }
}

bool kv_stop_asked() {
  const auto asked = gx_front().stop_asked;
  return x_stop_signal() != 0 || (asked != nullptr && asked());
}
