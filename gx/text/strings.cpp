#include "gx/text/strings.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/text/record_fill.h"

namespace {

constexpr std::size_t max_string = gx_max_string_length - 1;
constexpr std::size_t max_name = sizeof(gx_name_record_t::char_) - 1;
constexpr std::size_t max_value = sizeof(gx_value_record_t::char_) - 1;

// Reports a source of a length that the operation refuses, and stops.
[[noreturn]] void refuse_length(const char* operation, std::string_view source, const char* why) {
  const std::string_view head = source.substr(0, 10);
  gx_debug(" !!! error in  %s : %s \n", operation, why);
  gx_debug(" str_in (10) : \"%.*s\" \n", static_cast<int>(head.size()), head.data());
  gx_set_status(gx_code::invalid_string);
}

// The characters of a source record, refused unless its length is 0..most.
template <typename Record>
std::string_view checked_source(const Record& record, std::size_t most, const char* operation) {
  if (record.len < 0 || record.len > static_cast<std::int32_t>(most))
    refuse_length(operation, gx_view(record), record.len < 0 ? "< 0" : "> max");
  return gx_view(record);
}

std::string_view checked_source(std::string_view text, std::size_t most, const char* operation) {
  if (text.size() > most) refuse_length(operation, text, "> max");
  return text;
}

void append(std::string_view text, gx_string_record_t& string) {
  gx_check_string(string);
  const auto len = static_cast<std::size_t>(string.len);
  const std::size_t taken = std::min(text.size(), max_string - len);
  if (taken > 0) std::memmove(string.char_ + len, text.data(), taken);
  string.len = static_cast<std::int32_t>(len + taken);
  string.char_[len + taken] = 0;
  gx_check_string(string);
}

// The checks of the three text records and the repair of a typed line.
constexpr std::int32_t max_rest_length = 198;

// What a check says: the headlines by fault, then the name that begins each detail line.
struct check_texts_t {
  const char* negative;
  const char* too_long;
  const char* invalid_char;
  const char* name;
};
constexpr check_texts_t string_texts = {nullptr, " !!! error in  gx_check_string  ( too long )  ",
                                        " !!! error in  gx_check_string  ( invalid char )  ",
                                        "gx_check_string"};
constexpr check_texts_t name_texts = {
    " !! error in gx_check_name  ( < 0 ) ", " !!! error in  gx_check_name  ( too long )  ",
    " !!! error in  gx_check_name ( invalid char )  ", "gx_check_name"};
constexpr check_texts_t value_texts = {
    " !! error in gx_check_value  ( < 0 ) ", " !!! error in  gx_check_value  ( too long )  ",
    " !!! error in  gx_check_value  ( invalid char )  ", "gx_check_value"};

// The first characters of a record whose contents are not to be trusted.
void debug_first_characters(const char* chars) {
  gx_debug(" char_ : \"");
  for (int i = 0; i < 5; ++i) gx_debug("%c", gx_printable(chars[i]) ? chars[i] : '.');
  gx_debug("\"\n");
}

void debug_first_bytes(const char* chars) {
  for (int i = 0; i < 4; ++i)
    gx_debug(" '%c' %d", gx_printable(chars[i]) ? chars[i] : '.', chars[i]);
  gx_debug("\n");
}

// Position (from 1) of the first character that no record may hold, 0 when all are sound.
std::int32_t find_invalid(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i)
    if (!gx_printable(text[i])) return static_cast<std::int32_t>(i + 1);
  return 0;
}

[[noreturn]] void stop_invalid_char(const check_texts_t& texts, std::int32_t len, std::int32_t at,
                                    const char* chars) {
  gx_debug_line(texts.invalid_char);
  gx_debug(" %s  : len %d    ind_char = %d   char : %d\n", texts.name, len, at, chars[at - 1]);
  debug_first_characters(chars);
  gx_set_status(gx_code::invalid_string);
}

template <typename Record>
void check_short_record(Record& record, const check_texts_t& texts) {
  constexpr auto room = static_cast<std::int32_t>(sizeof record.char_);
  if (record.len < 0 || record.len > room) {
    gx_debug_line(record.len < 0 ? texts.negative : texts.too_long);
    gx_debug(" %s  : len %d\n", texts.name, record.len);
    debug_first_characters(record.char_);
    record.len = 0;
    gx_set_status(gx_code::invalid_string);
  }
  if (const auto at = find_invalid(gx_view(record)); at != 0)
    stop_invalid_char(texts, record.len, at, record.char_);
}

}  // namespace

gx_string_record_t gx_string(std::string_view text) {
  gx_string_record_t string;
  gx_copy_string(text, string);
  return string;
}

gx_name_record_t gx_name(std::string_view text) {
  gx_name_record_t name;
  gx_fill(name, checked_source(text, max_name, "copy_name"));
  gx_check_name(name);
  return name;
}

gx_value_record_t gx_value(std::string_view text) {
  gx_value_record_t value;
  gx_fill(value, checked_source(text, max_value, "copy_value"));
  gx_check_value(value);
  return value;
}

void gx_copy_string(std::string_view chars, gx_string_record_t& string) {
  gx_fill(string, checked_source(chars, max_string, "copy_string"));
  gx_check_string(string);
}

void gx_copy_const(std::string_view text, gx_string_record_t& string) {
  if (text.size() > max_string) {
    const std::string_view kept = text.substr(0, max_string - 1);
    const std::string_view head = text.substr(0, 10);
    std::printf(
        " !!! error in  copy_const : > max \n"
        "###  copy_const  : str_in(10) : \"%.*s\"      len : %d\n",
        static_cast<int>(head.size()), head.data(), static_cast<int>(text.size()));
    gx_fill(string, kept);
    gx_set_status(gx_code::invalid_string);
  }
  gx_fill(string, text);
  gx_check_string(string);
}

void gx_copy_line(const gx_string_record_t& from, gx_string_record_t& to) {
  gx_fill(to, checked_source(from, max_string, "copy_line"));
  gx_check_string(to);
}

void gx_copy_name(const gx_string_record_t& string, gx_name_record_t& name) {
  gx_fill(name, checked_source(string, max_name, "copy_name"));
  gx_check_name(name);
}

void gx_copy_value(const gx_string_record_t& string, gx_value_record_t& value) {
  gx_fill(value, checked_source(string, max_value, "copy_value"));
  gx_check_value(value);
}

void gx_name_string(const gx_name_record_t& name, gx_string_record_t& string) {
  gx_fill(string, checked_source(name, max_name, "name_string"));
  gx_check_string(string);
}

void gx_value_string(const gx_value_record_t& value, gx_string_record_t& string) {
  gx_fill(string, checked_source(value, max_value, "value_string"));
  gx_check_string(string);
}

void gx_concat_astr(std::string_view chars, gx_string_record_t& string) {
  append(checked_source(chars, max_string, "concat_astr"), string);
}

void gx_concat_const(std::string_view text, gx_string_record_t& string) {
  append(checked_source(text, max_string, "concat_const"), string);
}

void gx_concat_line(const gx_string_record_t& from, gx_string_record_t& to) {
  append(checked_source(from, max_string, "concat_line"), to);
}

void gx_concat_name(const gx_name_record_t& name, gx_string_record_t& string) {
  append(checked_source(name, max_name, "concat_name"), string);
}

void gx_concat_value(const gx_value_record_t& value, gx_string_record_t& string) {
  append(checked_source(value, max_value, "concat_value"), string);
}

void gx_concat_sp(gx_string_record_t& string) {
  gx_check_string(string);
  if (string.len + 1 < gx_max_string_length - 1) append(" ", string);
}

void gx_check_string(const gx_string_record_t& string) {
  if (string.len < 0 || string.len >= gx_max_string_length) {
    if (string.len < 0) {
      gx_debug(" !! error in gx_check_string ( < 0 ) : len %d\n", string.len);
    } else {
      gx_debug_line(string_texts.too_long);
      gx_debug(" gx_check_string  : len %d\n", string.len);
    }
    debug_first_characters(string.char_);
    debug_first_bytes(string.char_);
    gx_set_status(gx_code::invalid_string);
  }
  if (const auto at = find_invalid(gx_view(string)); at != 0)
    stop_invalid_char(string_texts, string.len, at, string.char_);
}

void gx_check_name(gx_name_record_t& name) { check_short_record(name, name_texts); }

void gx_check_value(gx_value_record_t& value) { check_short_record(value, value_texts); }

void gx_rest_string(gx_string_record_t& string) {
  if (string.len < 0) string = {};
  if (string.len > max_rest_length) string.len = max_rest_length;
  // The byte after the longest line is not part of it.
  const auto byte_at = [&](std::int32_t i) { return i < string.len ? string.char_[i] : '\0'; };
  std::int32_t i = 0;
  for (; i < string.len; ++i) {
    char& c = string.char_[i];
    if (c == 0 || (c == '\n' && byte_at(i + 1) == 0)) break;
    if (c == '\n') {
      c = ';';
    } else if (!gx_printable(c)) {
      c = ' ';
    }
  }
  string.len = i;
  string.char_[i] = 0;
}
