// How commands answer: lines in the list viewport, built from the words of the command.
#include "app/language/answers.h"

#include <string>

#include "expand/messages.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"

namespace {

kv_record_taker_t take = nullptr;

void take_message(const kv_told_t& told) {
  const auto& row = kv_row_of(told.code);
  kv_record("message", {{"code", row.name},
                        {"kind", kv_message_kind_name(row.kind)},
                        {"path", told.path},
                        {"values", told.values}});
}

}  // namespace

void kv_echo(std::string_view keyword, const kv_command_t& command, int first) {
  std::string line(keyword);
  for (int n = first; n <= command.count(); ++n) {
    line += command.word(n);
    line += ' ';
  }
  gx_display_list(line);
}

void kv_refuse(std::string_view keyword, const kv_command_t& command, std::string_view error,
               int first) {
  kv_echo(keyword, command, first);
  gx_display_list(error, gx_line_kind::error);
}

void kv_warn(std::string_view keyword, const kv_command_t& command, std::string_view warning,
             int first) {
  kv_echo(keyword, command, first);
  gx_display_list(warning, gx_line_kind::warning);
}

std::optional<bool> kv_on_or_off(std::string_view word, std::string_view least_off) {
  if (gx_equal("ON", word)) return true;
  if (gx_equal(least_off, word)) return false;
  return std::nullopt;
}

gx_string_record_t kv_unquote(std::string_view text) {
  const std::size_t opening = text.find_first_of("'\"");
  if (opening == std::string_view::npos) return gx_string(text);
  const std::size_t closing = text.find(text[opening], opening + 1);
  if (closing == std::string_view::npos) return gx_string(text);
  gx_string_record_t inner = gx_string(text.substr(opening + 1, closing - opening - 1));
  gx_concat_sp(inner);
  return inner;
}

std::string_view kv_file_name(std::string_view word) {
  const bool is_quoted =
      word.size() >= 2 && (word[0] == '\'' || word[0] == '"') && word.back() == word[0];
  return is_quoted ? word.substr(1, word.size() - 2) : word;
}

void kv_record(std::string_view type, std::initializer_list<kv_named_value_t> fields) {
  if (take != nullptr) take(type, {fields.begin(), fields.size()});
}

void kv_set_record_taker(kv_record_taker_t taker) {
  take = taker;
  kv_set_message_reader(taker == nullptr ? nullptr : take_message);
}
