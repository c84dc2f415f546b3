#include "gx/text/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "gx/text/strings.h"

namespace {
// The value of a digit in a base up to 16; -1 for any other character.
int digit_of(char c, int base) {
  const char u = gx_upper_case(c);
  const int digit = u >= '0' && u <= '9' ? u - '0' : (u >= 'A' && u <= 'F' ? u - 'A' + 10 : 99);
  return digit < base ? digit : -1;
}

// Unsigned digits with blanks anywhere; the value read so far stays when the scan is refused.
gx_parsed<std::int64_t> scan_digits(std::string_view text, int base, std::int64_t most) {
  gx_parsed<std::int64_t> result;
  for (const char c : text) {
    if (c == ' ') continue;
    const int digit = digit_of(c, base);
    if (digit < 0 || result.value > (most - digit) / base) {
      result.error = true;
      break;
    }
    result.value = result.value * base + digit;
  }
  return result;
}

template <typename Number>
gx_parsed<Number> decimal(std::string_view text) {
  const auto scan = scan_digits(text, 10, std::numeric_limits<Number>::max());
  return {static_cast<Number>(scan.value), scan.error};
}

// "[blanks][-][blanks]digits and points", ended by a blank: sign * digits / divisor.
gx_parsed<double> scan_real(std::string_view text) {
  const auto skip_blanks = [&] {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  };
  skip_blanks();
  double sign = 1;
  if (text.starts_with('-')) {
    sign = -1;
    text.remove_prefix(1);
    skip_blanks();
  }
  double digits = 0, divisor = 1;
  bool behind_point = false;
  for (const char c : text.substr(0, text.find(' '))) {
    if (c == '.') {
      behind_point = true;
      continue;
    }
    const int digit = digit_of(c, 10);
    if (digit < 0) return {0, true};
    digits = digits * 10 + digit;
    if (behind_point) divisor *= 10;
  }
  return {sign * digits / divisor, false};
}

void two_decimals(double value, gx_string_record_t& string) {
  if (value == 0) return gx_copy_const("0.0", string);
  if (!std::isfinite(value)) return gx_copy_const(std::isnan(value) ? "nan" : "inf", string);
  const double magnitude = std::fabs(value);
  double whole = std::trunc(magnitude + 0.0001);
  int decimals = static_cast<int>(std::fabs(magnitude - whole) * 100 + 0.5);
  if (decimals == 100) {
    whole += 1;
    decimals = 0;
  }
  char text[64];
  const int len =
      std::snprintf(text, sizeof text, "%s%.0f.%02d", value < 0 ? "-" : "", whole, decimals);
  gx_copy_const({text, static_cast<std::size_t>(len)}, string);
}

void integer_text(std::int32_t v, gx_string_record_t& string) {
  char text[16];
  const auto end = std::to_chars(text, text + sizeof text, v).ptr;
  gx_copy_const({text, static_cast<std::size_t>(end - text)}, string);
}
}  // namespace

void gx_int16_to_string(std::int16_t v, gx_string_record_t& string) { integer_text(v, string); }
void gx_int32_to_string(std::int32_t v, gx_string_record_t& string) { integer_text(v, string); }

gx_parsed<std::int16_t> gx_string_to_int16(std::string_view text) {
  return decimal<std::int16_t>(text);
}
gx_parsed<std::int32_t> gx_string_to_int32(std::string_view text) {
  return decimal<std::int32_t>(text);
}

// All 32 bits may be given: "FFFFFFFF" is -1.
gx_parsed<std::int32_t> gx_stringh_to_int32(std::string_view text) {
  const auto scan = scan_digits(text, 16, std::numeric_limits<std::uint32_t>::max());
  return {static_cast<std::int32_t>(static_cast<std::uint32_t>(scan.value)), scan.error};
}

void gx_real_to_string(gx_real_t real, gx_string_record_t& string) {
  two_decimals(static_cast<double>(real) / gx_real_unit, string);
}
void gx_shortreal_to_string(float shortreal, gx_string_record_t& string) {
  two_decimals(static_cast<double>(shortreal), string);
}

gx_parsed<gx_real_t> gx_string_to_real(std::string_view text) {
  const auto scan = scan_real(text);
  const double real = std::floor(scan.value * gx_real_unit + 0.5);
  const bool fits = real >= std::numeric_limits<gx_real_t>::min() &&
                    real <= std::numeric_limits<gx_real_t>::max();  // also false for a NaN
  if (scan.error || !fits) return {0, true};
  return {static_cast<gx_real_t>(real), false};
}

gx_parsed<float> gx_string_to_shortreal(std::string_view text) {
  const auto scan = scan_real(text);
  const bool fits = std::fabs(scan.value) <= static_cast<double>(std::numeric_limits<float>::max());
  if (scan.error || !fits) return {0, true};
  return {static_cast<float>(scan.value), false};
}
