// The interpreter: a line to commands, a command to its handler.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "app/language/command.h"

inline constexpr std::size_t kv_max_words = 30;
inline constexpr std::int32_t kv_last_position = 199;  // reading stops after it

struct kv_words_t {
  std::array<gx_string_record_t, kv_max_words> word;
  std::size_t count = 0;

  std::span<const gx_string_record_t> all() const { return {word.data(), count}; }
  std::string_view first() const { return count == 0 ? std::string_view{} : gx_view(word[0]); }
};

// Splits at blanks and commas, a quoted part being one word, into at most `most` words.
void kv_split_words(const gx_string_record_t& text, kv_words_t& words,
                    std::size_t most = kv_max_words);

// Runs every command of the line with the tables for $ARG and $VAR. Both may change: they are
// normalised, and ASSIgn and READln store into `vars`.
void kv_process_command(const gx_string_record_t& line, kv_array_param_t& args,
                        kv_array_param_t& vars);
// Whether what is running is to stop: the user asks by Control+A, or a signal ends the program.
bool kv_stop_asked();
