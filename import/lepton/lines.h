// Lines of a file of Lepton EDA, and the numbers on them.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "import/lepton/texts.h"

inline constexpr int gxi_lepton_furthest = 400000;  // largest coordinate

class gxi_lepton_lines_t {
 public:
  gxi_lepton_lines_t(std::string_view text, std::string_view name) : text_(text), name_(name) {}

  // Throws std::runtime_error "NAME:LINE: what".
  [[noreturn]] void refuse(const std::string& what) const { refuse(number_of_line_, what); }
  [[noreturn]] void refuse(int line, const std::string& what) const;

  // False after the last line.
  bool next();
  std::string_view line() const { return line_; }
  int number_of_line() const { return number_of_line_; }
  // The lines that follow the current one.
  std::string following(int count, const char* of);

  // The numbers after the letter of the line, `least` to `most`; what follows them is a name where
  // one may stand.
  void take_numbers(std::size_t least, std::size_t most, bool has_name = false);
  std::size_t count() const { return count_; }
  std::string_view rest() const { return rest_; }
  // Of those taken, from 0 on.
  int number(std::size_t i, int otherwise = 0) const;
  std::int32_t length(std::size_t i) const;
  gxi_lepton_point_t point(std::size_t i) const { return {length(i), length(i + 1)}; }
  int quarter_turns(std::size_t i) const;

 private:
  std::string_view text_, name_, line_, rest_;
  std::size_t at_ = 0;
  int number_of_line_ = 0;
  std::array<int, 16> numbers_{};
  std::size_t count_ = 0;
};
