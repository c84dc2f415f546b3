// What a command handler receives, how handlers answer, and the interpreter that calls them.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "app/state.h"
#include "gx/text/at.h"
#include "gx/text/message_list.h"

// One command: its words (word 1 is the keyword, at most 30) and the tables of its level.
struct kv_command_t {
  std::span<const gx_string_record_t> words;
  kv_array_param_t& args;
  kv_array_param_t& vars;

  int count() const { return static_cast<int>(words.size()); }
  // Word n, from 1; empty when there is none.
  std::string_view word(int n) const {
    return n >= 1 && n <= count() ? gx_view(gx_at(words, n - 1)) : std::string_view{};
  }
};

// --- answers in the list viewport
inline constexpr std::string_view kv_bad_count = "# !! Error : parameter number invalid ? ";
inline constexpr std::string_view kv_bad_second = "# !! Error :  2nd parameter incorrect ? ";
// Shows one line: `keyword` to the letter (" SMAsh ON ", "# SMAsh "), then the words from `first`
// on, each followed by a blank.
void kv_echo(std::string_view keyword, const kv_command_t& command, int first = 2);
// The same and then the error line.
void kv_refuse(std::string_view keyword, const kv_command_t& command, std::string_view error,
               int first = 2);
// ON or OFF, of which `least_off` has to be there; nothing for another word.
std::optional<bool> kv_on_or_off(std::string_view word, std::string_view least_off = "OF");
// A typed text without its quotes: what lies between the first quote and the next equal one,
// followed by a blank; a text without such a pair as it is.
gx_string_record_t kv_unquote(std::string_view text);
// A file name as it was typed, without one pair of quotes around it.
std::string_view kv_file_name(std::string_view word);

// --- the interpreter
inline constexpr std::size_t kv_max_words = 30;
inline constexpr std::int32_t kv_last_position = 199;  // reading stops behind it

struct kv_words_t {
  std::array<gx_string_record_t, kv_max_words> word;
  std::size_t count = 0;

  std::span<const gx_string_record_t> all() const { return {word.data(), count}; }
  std::string_view first() const { return count == 0 ? std::string_view{} : gx_view(word[0]); }
};

// Splits at blanks and commas, a quoted part being one word, into at most `most` words.
void kv_split_words(const gx_string_record_t& text, kv_words_t& words,
                    std::size_t most = kv_max_words);

// Runs every command of the line with the tables behind $ARG and $VAR. Both may change: they are
// normalised, and ASSIgn and READln store into `vars`.
void kv_process_command(const gx_string_record_t& line, kv_array_param_t& args,
                        kv_array_param_t& vars);
// Runs a shell command (1..508 characters) and then each line of its output as a command line.
void kv_exec_cmd(std::string_view text);
// Replaces the command line by the command that it begins, with the present settings.
void kv_expand_cmd(const gx_string_record_t& line);
// Whether what is running is to stop: the user asks by Control+A, or a signal ends the program.
bool kv_stop_asked();
void kv_process_events(bool first, kv_array_param_t& args, kv_array_param_t& vars);
