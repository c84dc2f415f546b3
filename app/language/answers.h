// How handlers answer in the list viewport, and what they read of a word.
#pragma once

#include <optional>
#include <string_view>

#include "app/language/command.h"

inline constexpr std::string_view kv_bad_count = "# !! Error : parameter number invalid ? ";
inline constexpr std::string_view kv_bad_second = "# !! Error :  2nd parameter incorrect ? ";
// Shows one line: `keyword` to the letter (" SMAsh ON ", "# SMAsh "), then the words from `first`
// on, each followed by a blank.
void kv_echo(std::string_view keyword, const kv_command_t& command, int first = 2);
// The same and then the error line.
void kv_refuse(std::string_view keyword, const kv_command_t& command, std::string_view error,
               int first = 2);
// The same for what is no error.
void kv_warn(std::string_view keyword, const kv_command_t& command, std::string_view warning,
             int first = 2);
// ON or OFF, of which `least_off` has to be there; nothing for another word.
std::optional<bool> kv_on_or_off(std::string_view word, std::string_view least_off = "OF");
// A typed text without its quotes: what lies between the first quote and the next equal one,
// followed by a blank; a text without such a pair as it is.
gx_string_record_t kv_unquote(std::string_view text);
// A file name as it was typed, without one pair of quotes around it.
std::string_view kv_file_name(std::string_view word);
