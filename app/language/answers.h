// How handlers answer: lines in the list viewport, and the same as data; what they read of a word.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

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

// --- as data, for programs that read a batch as JSON: a command that has more to say than its
// lines makes a record of what it makes its lines of A named value of a record. Texts are the
// caller's, and hold while the record is taken.
struct kv_named_value_t {
  kv_named_value_t(std::string_view the_name, std::string_view text)
      : name(the_name), value(text) {}
  kv_named_value_t(std::string_view the_name, std::span<const std::string_view> texts)
      : name(the_name), value(texts) {}
  template <std::same_as<bool> Flag>
  kv_named_value_t(std::string_view the_name, Flag flag) : name(the_name), value(flag) {}
  template <std::integral Number>
  requires(!std::same_as<Number, bool>) kv_named_value_t(std::string_view the_name, Number number)
      : name(the_name), value(static_cast<std::int64_t>(number)) {}
  // What is not a number, or infinite, is none.
  kv_named_value_t(std::string_view the_name, double number) : name(the_name), value(number) {}

  std::string_view name;
  std::variant<bool, std::int64_t, double, std::string_view, std::span<const std::string_view>>
      value;
};

// Gives a record of a type ("finding") to the one who takes them; does nothing when nobody does.
void kv_record(std::string_view type, std::initializer_list<kv_named_value_t> fields);

// Who takes records, those of the messages of an expansion, too; nobody at first.
using kv_record_taker_t = void (*)(std::string_view type, std::span<const kv_named_value_t> fields);
void kv_set_record_taker(kv_record_taker_t taker);
