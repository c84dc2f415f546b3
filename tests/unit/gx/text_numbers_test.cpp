// Numbers, tokens and dates: text in, value out, and back.
#include <limits>
#include <string>
#include <vector>

#include "gx/text/date.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/text/tokens.h"

namespace {
TEST(Numbers, IntegersFromText) {
  const struct {
    const char* text;
    std::int32_t value;
    bool error;
  } cases[] = {
      {"12 3", 123, false},
      {"", 0, false},
      {"  ", 0, false},
      {"-5", 0, true},
      {"+5", 0, true},
      {"12x4", 12, true},
      {"2147483647", 2147483647, false},
      {"2147483648", 214748364, true},
  };
  for (const auto& c : cases) {
    const auto parsed = gx_string_to_int32(c.text);
    EXPECT_EQ(parsed.value, c.value) << c.text;
    EXPECT_EQ(parsed.error, c.error) << c.text;
  }
  EXPECT_EQ(gx_string_to_int16("32767").value, 32767);
  EXPECT_TRUE(gx_string_to_int16("32768").error);
  EXPECT_EQ(gx_string_to_int16("32768").value, 3276);
  EXPECT_EQ(gx_stringh_to_int32("09aAfF").value, 0x09aaff);
  EXPECT_EQ(gx_stringh_to_int32("fF 0").value, 0xff0);
  EXPECT_EQ(gx_stringh_to_int32("FFFFFFFF").value, -1);
  EXPECT_TRUE(gx_stringh_to_int32("100000000").error);
  EXPECT_TRUE(gx_stringh_to_int32("1G").error);

  gx_string_record_t string;
  gx_int32_to_string(std::numeric_limits<std::int32_t>::min(), string);
  EXPECT_EQ(gx_view(string), "-2147483648");
  gx_int16_to_string(0, string);
  EXPECT_EQ(gx_view(string), "0");
}

TEST(Numbers, RealsFromText) {
  const struct {
    const char* text;
    gx_real_t value;
    bool error;
  } cases[] = {
      {"-1.5", -150000, false},
      {"2.", 200000, false},
      {"1x", 0, true},
      {"", 0, false},
      {"  - 3 7", -300000, false},
      {".00001", 1, false},
      {"1.2.3", 123000, false},
      {"0.000005", 1, false},
      {"-0.000005", 0, false},
      {"21474.83647", 2147483647, false},
      {"-21474.83648", -2147483647 - 1, false},
      {"-21474.83649", 0, true},
      {"--1", 0, true},
      {"1 x", 100000, false},
      {".", 0, false},
      {"21474.83648", 0, true},
      {"1e5", 0, true},
  };
  for (const auto& c : cases) {
    const auto parsed = gx_string_to_real(c.text);
    EXPECT_EQ(parsed.value, c.value) << c.text;
    EXPECT_EQ(parsed.error, c.error) << c.text;
  }
  EXPECT_FLOAT_EQ(gx_string_to_shortreal("-12.25").value, -12.25F);
  EXPECT_TRUE(gx_string_to_shortreal(std::string(199, '9')).error);
}

TEST(Numbers, RealsToText) {
  const struct {
    gx_real_t value;
    const char* text;
  } cases[] = {{-150000, "-1.50"},   {99999, "1.00"},         {0, "0.0"},
               {-99999, "-1.00"},    {99989, "1.00"},         {1004, "0.01"},
               {12345678, "123.46"}, {99400, "0.99"},         {99500, "1.00"},
               {-1, "-0.00"},        {2147483647, "21474.84"}};
  gx_string_record_t string;
  for (const auto& c : cases) {
    gx_real_to_string(c.value, string);
    EXPECT_EQ(gx_view(string), c.text) << c.value;
  }
  gx_shortreal_to_string(0.1F, string);
  EXPECT_EQ(gx_view(string), "0.10");
  gx_shortreal_to_string(std::numeric_limits<float>::max(), string);
  EXPECT_EQ(string.len, 39 + 3);
  gx_shortreal_to_string(std::numeric_limits<float>::quiet_NaN(), string);
  EXPECT_EQ(gx_view(string), "nan");
  gx_shortreal_to_string(std::numeric_limits<float>::infinity(), string);
  EXPECT_EQ(gx_view(string), "inf");
}

std::vector<std::string> tokens_of(const std::string& text, std::string_view set) {
  std::vector<std::string> tokens;
  const auto line = gx_string(text);
  gx_string_record_t token;
  for (std::int32_t pos = 1; gx_rd_string_t(line, set, token, pos);)
    tokens.emplace_back(gx_view(token));
  return tokens;
}

TEST(Tokens, WordsAndQuotes) {
  using words = std::vector<std::string>;
  EXPECT_EQ(tokens_of("CHANGE \"a b\" x", " "), (words{"CHANGE", "\"a b\"", "x"}));
  EXPECT_EQ(tokens_of("'' x\"\"", " "), (words{"''", "x\"\""}));
  EXPECT_EQ(tokens_of("a, ,b", " ,"), (words{"a", "b"}));
  EXPECT_EQ(tokens_of("'it \"is' \"open  ", " "), (words{"'it \"is'", "\"open"}));
  EXPECT_EQ(tokens_of("a \"", " "), (words{"a", "\""}));
  EXPECT_EQ(tokens_of("a  ", " "), (words{"a", ""}));
  EXPECT_EQ(tokens_of("", " "), words{});
  EXPECT_EQ(tokens_of("DO \"x;y\"", ";"), (words{"DO \"x", "y\""}));  // a quote must open a word
  EXPECT_EQ(tokens_of(std::string(199, 'z'), " "), words{std::string(199, 'z')});

  gx_string_record_t token;
  for (std::int32_t outside : {0, -3, 4, 201}) {
    std::int32_t pos = outside;
    EXPECT_FALSE(gx_rd_string_t(gx_string("abc"), " ", token, pos));
    EXPECT_EQ(pos, outside);
  }
}

TEST(Date, EveryFourthYearIsALeapYear) {
  const struct {
    std::int64_t seconds;
    int day, month, year, hour, minute;
  } cases[] = {
      {63072000, 1, 1, 1972, 0, 0},
      {951782400, 29, 2, 2000, 0, 0},
      {0, 1, 1, 1970, 0, 0},
      {-1, 31, 12, 1969, 23, 59},
      {63071999, 31, 12, 1971, 23, 59},
      {94694399, 31, 12, 1972, 23, 59},
      {94694400, 1, 1, 1973, 0, 0},
      {5097600, 1, 3, 1970, 0, 0},
      {68255999, 29, 2, 1972, 23, 59},
      {189302399, 31, 12, 1975, 23, 59},
      {189302400, 1, 1, 1976, 0, 0},
      {1722474061, 1, 8, 2024, 1, 1},
      {978307199, 31, 12, 2000, 23, 59},
      {978307200, 1, 1, 2001, 0, 0},
      {1079913600, 22, 3, 2004, 0, 0},
      {4107542400, 29, 2, 2100, 0, 0},
      {1735689599, 31, 12, 2024, 23, 59},
  };
  for (const auto& c : cases) {
    const gx_date_t date = gx_date_of(c.seconds);
    EXPECT_EQ(date.day, c.day) << c.seconds;
    EXPECT_EQ(date.month, c.month) << c.seconds;
    EXPECT_EQ(date.year, c.year) << c.seconds;
    EXPECT_EQ(date.hour, c.hour) << c.seconds;
    EXPECT_EQ(date.minute, c.minute) << c.seconds;
  }
}
}  // namespace
