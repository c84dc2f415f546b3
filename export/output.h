// Where a writer of netlists puts its text: a file through a buffer of its own, so that a design of
// any size streams. What could not be written shows in the file's error mark (std::ferror).
#pragma once

#include <charconv>
#include <concepts>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "platform/json.h"

class kv_output_t {
 public:
  explicit kv_output_t(std::FILE* file) : file_(file) {}
  ~kv_output_t() { flush(); }
  kv_output_t(const kv_output_t&) = delete;
  kv_output_t& operator=(const kv_output_t&) = delete;

  kv_output_t& operator<<(std::string_view text) {
    text_ += text;
    if (text_.size() > most) flush();
    return *this;
  }
  kv_output_t& operator<<(char c) {
    text_ += c;
    return *this;
  }
  template <std::integral Number>
  requires(!std::same_as<Number, char>) kv_output_t& operator<<(Number number) {
    char digits[24];
    return *this << std::string_view(digits, std::to_chars(digits, digits + 24, number).ptr);
  }
  // As few digits as read back the same number.
  kv_output_t& operator<<(float number) {
    char digits[40];
    return *this << std::string_view(digits, std::to_chars(digits, digits + 40, number).ptr);
  }
  kv_output_t& json(std::string_view text) {
    x_append_json(text_, text);
    return *this;
  }
  void flush() {
    if (!text_.empty() && file_ != nullptr) std::fwrite(text_.data(), 1, text_.size(), file_);
    text_.clear();
  }

 private:
  static constexpr std::size_t most = 1U << 16U;
  std::FILE* file_;
  std::string text_;
};

// Writes `separator` between things: nothing before the first.
class kv_between_t {
 public:
  explicit kv_between_t(std::string_view separator) : separator_(separator) {}
  std::string_view next() { return std::exchange(first_, false) ? std::string_view() : separator_; }

 private:
  std::string_view separator_;
  bool first_ = true;
};
