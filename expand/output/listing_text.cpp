#include "expand/output/listing_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace {

constexpr std::size_t buffer_size = 1 << 18;
constexpr std::size_t number_size = 64;  // longest formatted number: a float has 39 digits at most

}  // namespace

kv_listing_text_t::kv_listing_text_t(std::FILE* file)
    : file_(file), buffer_(new char[buffer_size]) {}

char* kv_listing_text_t::room(std::size_t n) {
  if (used_ + n > buffer_size) flush();
  return buffer_.get() + used_;
}

void kv_listing_text_t::flush() {
  ok_ = ok_ && std::fwrite(buffer_.get(), 1, used_, file_) == used_;
  used_ = 0;
}

void kv_listing_text_t::text(std::string_view chars) {
  std::memcpy(room(chars.size()), chars.data(), chars.size());
  used_ += chars.size();
}

void kv_listing_text_t::rule(char c, int n) {
  const auto size = static_cast<std::size_t>(n);
  char* out = room(size + 1);
  std::memset(out, c, size);
  out[size] = '\n';
  used_ += size + 1;
}

void kv_listing_text_t::integer(std::string_view label, std::int64_t value) {
  char* out = room(label.size() + number_size);
  std::memcpy(out, label.data(), label.size());
  char* end = std::to_chars(out + label.size(), out + label.size() + number_size - 1, value).ptr;
  *end++ = '\n';
  used_ += static_cast<std::size_t>(end - out);
}

void kv_listing_text_t::integers(std::string_view label, std::int64_t a, std::int64_t b) {
  integer(label, a);
  --used_;  // the line goes on
  integer("  ", b);
}

void kv_listing_text_t::real(std::string_view label, float value) {
  char* out = room(label.size() + number_size);
  std::memcpy(out, label.data(), label.size());
  char* number = out + label.size();
  char* end;
  // A float times 1000 is exact in a double, so rounding it to the nearest whole number, ties to
  // even, is what the printing of three decimals does.
  const double scaled = static_cast<double>(value) * 1000;
  if (std::abs(scaled) < 1e15) {
    char digits[number_size];
    const auto whole = static_cast<std::uint64_t>(std::llrint(std::abs(scaled)));
    char* point = std::to_chars(digits, digits + number_size, whole / 1000).ptr;
    const auto decimals = static_cast<unsigned>(whole % 1000);
    *point++ = '.';
    *point++ = static_cast<char>('0' + decimals / 100);
    *point++ = static_cast<char>('0' + decimals / 10 % 10);
    *point++ = static_cast<char>('0' + decimals % 10);
    const auto size = static_cast<std::size_t>(point - digits);
    const std::size_t sign = std::signbit(value) ? 1 : 0;
    const std::size_t padding = size + sign < 10 ? 10 - size - sign : 0;
    std::memset(number, ' ', padding);
    if (sign != 0) number[padding] = '-';
    std::memcpy(number + padding + sign, digits, size);
    end = number + padding + sign + size;
  } else {  // huge or not a number at all: rare
    end = number + std::snprintf(number, number_size, "%10.3f", static_cast<double>(value));
  }
  *end++ = '\n';
  used_ += static_cast<std::size_t>(end - out);
}

void kv_listing_text_t::quoted(std::string_view label, std::string_view value) {
  text(label);
  char* out = room(value.size() + 3);
  *out++ = '"';
  out = std::copy(value.begin(), value.end(), out);
  *out++ = '"';
  *out = '\n';
  used_ += value.size() + 3;
}

bool kv_listing_text_t::finish() {
  flush();
  return ok_ && std::fflush(file_) == 0;
}
