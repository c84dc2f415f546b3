#include "import/lepton/lines.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace {

constexpr int longest_value = 65536;  // of a number that is no coordinate; also of lines

}  // namespace

void gxi_lepton_lines_t::refuse(int line, const std::string& what) const {
  throw std::runtime_error(std::string(name_) + ":" + std::to_string(std::max(line, 1)) + ": " +
                           what);
}

bool gxi_lepton_lines_t::next() {
  if (at_ >= text_.size()) return false;
  const auto end = std::min(text_.find('\n', at_), text_.size());
  line_ = text_.substr(at_, end - at_);
  if (!line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
  at_ = end + 1;
  ++number_of_line_;
  return true;
}

void gxi_lepton_lines_t::take_numbers(std::size_t least, std::size_t most, bool has_name) {
  numbers_.fill(0);
  count_ = 0;
  rest_ = line_.substr(1);
  while (count_ < most) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size()));
    int value = 0;
    const auto [end, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value);
    const auto length = static_cast<std::size_t>(end - rest_.data());
    const bool is_word = length == rest_.size() || rest_[length] == ' ' || rest_[length] == '\t';
    if (error != std::errc() || !is_word) break;
    numbers_[count_++] = value;
    rest_.remove_prefix(length);
  }
  if (count_ < least) refuse(std::to_string(least) + " numbers expected");
  rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t"), rest_.size()));
  if (!rest_.empty() && !has_name) refuse("not more than " + std::to_string(most) + " numbers");
}

int gxi_lepton_lines_t::number(std::size_t i, int otherwise) const {
  if (i >= count_) return otherwise;
  return std::clamp(numbers_[i], -longest_value, longest_value);
}

std::int32_t gxi_lepton_lines_t::length(std::size_t i) const {
  if (numbers_[i] < -gxi_lepton_furthest || numbers_[i] > gxi_lepton_furthest)
    refuse("a coordinate beyond " + std::to_string(gxi_lepton_furthest));
  return numbers_[i];
}

int gxi_lepton_lines_t::quarter_turns(std::size_t i) const {
  const int degrees = number(i);
  if (degrees % 90 != 0) refuse("an angle of 0, 90, 180 or 270 expected");
  return ((degrees / 90) % 4 + 4) % 4;
}

std::string gxi_lepton_lines_t::following(int count, const char* of) {
  if (count < 0) refuse("a number of lines expected");
  const int first = number_of_line_;
  std::string all;
  for (int i = 0; i < count; ++i) {
    if (!next()) refuse(first, std::string("lines of the ") + of + " are missing");
    if (i > 0) all += '\n';
    all += line_;
  }
  return all;
}
