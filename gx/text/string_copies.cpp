// Copies and concatenations of the text records.
#include "gx/text/string_copies.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "gx/text/messages/debug.h"
#include "gx/text/messages/status.h"
#include "gx/text/record_fill.h"
#include "gx/text/string_checks.h"

namespace {
constexpr std::size_t max_string = gx_max_string_length - 1;
constexpr std::size_t max_name = sizeof(gx_name_record_t::char_) - 1;
constexpr std::size_t max_value = sizeof(gx_value_record_t::char_) - 1;

// The characters of a source record, refused unless its length is 0..most.
template <typename Record>
std::string_view checked_source(const Record& record, std::size_t most, const char* operation) {
  if (record.len < 0 || record.len > static_cast<std::int32_t>(most))
    gx_refuse_length(operation, gx_view(record), record.len);
  return gx_view(record);
}

std::string_view checked_source(std::string_view text, std::size_t most, const char* operation) {
  if (text.size() > most)
    gx_refuse_length(operation, text,
                     static_cast<std::int32_t>(std::min(text.size(), std::size_t{INT32_MAX})));
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
}  // namespace

void gx_refuse_length(std::string_view operation, std::string_view source, std::int32_t length) {
  const auto shown = [](std::string_view text) { return static_cast<int>(text.size()); };
  if (length < 0 && operation == "concat_const") {
    gx_debug(" !!! error in concat_const  : len invalid  : %d  \n", length);
  } else {
    gx_debug(" !!! error in  %.*s : %s \n", shown(operation), operation.data(),
             length < 0 ? "< 0" : "> max");
  }
  const std::string_view head = source.substr(0, 10);
  gx_debug(" str_in (10) : \"%.*s\" \n", shown(head), head.data());
  gx_set_status(gx_code::invalid_string);
}

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
