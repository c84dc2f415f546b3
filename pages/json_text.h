// JSON as it is written from front to back; commas come by themselves.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include "gx/vector/look.h"

class kv_json_text {
 public:
  std::string text;

  void open(char bracket) {  // '[' or '{'
    separate();
    text += bracket;
    is_first_ = true;
  }
  void close(char bracket) {
    text += bracket;
    is_first_ = false;
  }
  void name(std::string_view plain) {  // of what is added next
    separate();
    text.append("\"").append(plain).append("\":");
    is_first_ = true;
  }
  void open(std::string_view plain, char bracket) {
    name(plain);
    open(bracket);
  }

  template <std::integral Number>
  void add(Number number) {
    separate();
    char digits[24];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
  }
  void add_units(std::int64_t design_units) {  // in hundredths
    separate();
    gx_append_units(text, design_units);
  }
  void add(bool) = delete;
  void add(std::string_view words);     // UTF-8, or else Latin-1
  void add_raw(std::string_view json);  // JSON already

 private:
  void separate() {
    if (!is_first_) text += ',';
    is_first_ = false;
  }
  bool is_first_ = true;
};
