#include "results/text_rows.h"

#include <charconv>
#include <limits>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t most_begins = 65536;

bool is_blank(std::uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_letter(std::uint8_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Words of a text whose characters take `step` bytes.
class words_t {
 public:
  words_t(rs_bytes_t bytes, std::size_t at, std::size_t step)
      : bytes_(bytes), at_(at), step_(step) {}

  std::size_t at() const { return at_; }
  bool is_at_end() const { return at_ >= bytes_.size(); }
  std::uint8_t here() const { return bytes_[at_]; }
  void skip_blanks() {
    while (!is_at_end() && is_blank(here())) at_ += step_;
  }
  // False when no blank ends it: it may still be written.
  bool skip_word() {
    while (!is_at_end() && !is_blank(here())) at_ += step_;
    return !is_at_end();
  }
  // Of a number not more is kept than any has.
  std::string_view word() {
    length_ = 0;
    for (; !is_at_end() && !is_blank(here()); at_ += step_) {
      if (length_ < sizeof text_) text_[length_++] = static_cast<char>(here());
    }
    return {text_, length_};
  }

 private:
  rs_bytes_t bytes_;
  std::size_t at_, step_;
  char text_[96];
  std::size_t length_ = 0;
};

std::size_t step_of(const rs_header_t& header) { return header.is_wide ? 2 : 1; }

// A word that no number begins with.
bool begins_text(std::uint8_t c) {
  return is_letter(c) && c != 'n' && c != 'N' && c != 'i' && c != 'I';
}

// Goes past one row; false when it is not whole.
bool skip_row(words_t& words, std::uint64_t nb_variables) {
  for (std::uint64_t i = 0; i <= nb_variables; ++i) {
    words.skip_blanks();
    if (words.is_at_end() || begins_text(words.here())) return false;
    if (!words.skip_word()) return false;
  }
  return true;
}

double number_of(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool is_number = read.ec == std::errc() && read.ptr == text.data() + text.size();
  return is_number ? number : std::numeric_limits<double>::quiet_NaN();
}

rs_value_t value_of(std::string_view word) {
  const auto comma = word.find(',');
  if (comma == word.npos) return {number_of(word)};
  return {number_of(word.substr(0, comma)), number_of(word.substr(comma + 1))};
}

}  // namespace

rs_text_rows_t rs_find_text_rows(rs_bytes_t bytes, const rs_header_t& header) {
  rs_text_rows_t rows;
  rows.end = header.values_at;
  words_t words(bytes, header.values_at, step_of(header));
  while (header.nb_points == 0 || rows.nb_rows < header.nb_points) {
    const std::size_t begin = words.at();
    if (!skip_row(words, header.nb_variables)) break;
    if (rows.nb_rows % rows.stride == 0) rows.begins.push_back(begin);
    ++rows.nb_rows;
    rows.end = words.at();
    if (rows.begins.size() < most_begins) continue;
    for (std::size_t i = 0; i < most_begins / 2; ++i) rows.begins[i] = rows.begins[2 * i];
    rows.begins.resize(most_begins / 2);
    rows.stride *= 2;
  }
  return rows;
}

rs_text_reader_t::rs_text_reader_t(rs_bytes_t bytes, const rs_header_t& header,
                                   const rs_text_rows_t& rows, std::uint64_t row)
    : bytes_(bytes),
      nb_variables_(static_cast<std::size_t>(header.nb_variables)),
      at_(header.values_at),
      step_(step_of(header)) {
  if (rows.nb_rows == 0) return;
  const std::size_t begin = rows.begins[static_cast<std::size_t>(row / rows.stride)];
  words_t words(bytes_, begin, step_);
  for (auto left = row % rows.stride; left > 0; --left) skip_row(words, nb_variables_);
  at_ = words.at();
}

void rs_text_reader_t::next(std::span<rs_value_t> values) {
  words_t words(bytes_, at_, step_);
  words.skip_blanks();
  words.word();  // the index
  for (std::size_t i = 0; i < nb_variables_; ++i) {
    words.skip_blanks();
    const rs_value_t value = value_of(words.word());
    if (i < values.size()) values[i] = value;
  }
  at_ = words.at();
}
