// The text records: what they hold, what they refuse, how they compare.
#include <algorithm>
#include <string>

#include "gx/text/kept_text.h"
#include "gx/text/strings.h"
#include "tests/support/fatal_stop.h"

namespace {
const std::string a63(63, 'a'), a64(64, 'a'), a198(198, 'a'), a199(199, 'a'), a200(200, 'a');

TEST(TextRecords, ConcatenationIsClippedAt199) {
  auto string = gx_string(a198);
  gx_concat_const("xyz", string);
  EXPECT_EQ(gx_view(string), a198 + "x");
  EXPECT_EQ(string.char_[199], 0);
  gx_concat_name(gx_name("n"), string);
  EXPECT_EQ(string.len, 199);

  auto almost = gx_string(a198);
  gx_concat_sp(almost);
  EXPECT_EQ(almost.len, 198);
  auto room = gx_string(std::string(196, 'a'));
  gx_concat_sp(room);
  gx_concat_sp(room);
  EXPECT_EQ(room.len, 198);
}

TEST(TextRecords, ChecksSayWhatIsWrong) {
  gx_string_record_t string = gx_string("abc");
  const auto check = [&] { gx_check_string(string); };
  string.char_[1] = '\t';
  expect_stop(check, gx_code::invalid_string,
              " !!! error in  gx_check_string  \\( invalid char \\)  \n"
              " gx_check_string  : len 3    ind_char = 2   char : 9");
  string.len = -4;
  expect_stop(check, gx_code::invalid_string, " !! error in gx_check_string \\( < 0 \\) : len -4");
  string.len = 200;
  expect_stop(check, gx_code::invalid_string,
              " !!! error in  gx_check_string  \\( too long \\)  \n gx_check_string  : len 200");

  gx_name_record_t name = gx_name("n");
  name.len = 65;
  expect_stop([&] { gx_check_name(name); }, gx_code::invalid_string,
              " !!! error in  gx_check_name  \\( too long \\)  \n gx_check_name  : len 65");
  gx_value_record_t value = gx_value("v");
  value.char_[0] = static_cast<char>(200);
  expect_stop([&] { gx_check_value(value); }, gx_code::invalid_string,
              " !!! error in  gx_check_value  \\( invalid char \\)  ");
  expect_stop([] { gx_string(a200); }, gx_code::invalid_string, "copy_string : > max");
  expect_stop([&] { gx_copy_const(a200, string); }, gx_code::invalid_string,
              "copy_const  : str_in\\(10\\) : \"aaaaaaaaaa\"      len : 200");
}

TEST(TextRecords, ATypedLineIsRepaired) {
  const struct {
    std::string typed;
    std::int32_t len;
    std::string repaired;
  } cases[] = {
      {"A\nB", 3, "A;B"},
      {"A\n", 2, "A"},
      {"A\n\nB", 4, "A;;B"},
      {std::string("A\0B", 3), 3, "A"},
      {std::string("A\n\0B", 4), 4, "A"},
      {"a\tb\xe9", 4, "a b "},
      {"abc", -3, ""},
      {a199, 199, a198},
      {a199, 70000, a198},
  };
  for (const auto& c : cases) {
    gx_string_record_t string;
    std::copy(c.typed.begin(), c.typed.end(), string.char_);
    string.len = c.len;
    gx_rest_string(string);
    EXPECT_EQ(gx_view(string), c.repaired);
  }
}

TEST(TextRecords, ComparisonsIgnoreCaseAndNeverStop) {
  EXPECT_TRUE(gx_const_iden_string("abc", gx_string("ABC")));
  EXPECT_FALSE(gx_const_iden_string("ab", gx_string("ABC")));
  EXPECT_TRUE(gx_const_equal_string("AB", gx_string("abcd")));
  EXPECT_FALSE(gx_const_equal_string("abcd", gx_string("AB")));
  EXPECT_FALSE(gx_const_iden_string("[", gx_string("{")));  // only letters have a case
  EXPECT_TRUE(gx_name_iden_name(gx_name("Vdd"), gx_name("vDD")));
  EXPECT_TRUE(gx_string_equal_value(gx_string("por"), gx_value("PORT_IN")));

  gx_string_record_t damaged = gx_string("abc");
  damaged.len = -1;
  EXPECT_FALSE(gx_string_iden_string(damaged, damaged));
  EXPECT_FALSE(gx_const_equal_string("", damaged));
  damaged.len = 100000;
  EXPECT_FALSE(gx_string_equal_name(damaged, gx_name("abc")));
  EXPECT_FALSE(gx_const_iden_string(std::string(201, 'a'), gx_string(a199)));

  EXPECT_TRUE(gx_is_less_than(gx_string("ab"), gx_string("ABC")));
  EXPECT_TRUE(gx_is_less_than(gx_string("B_1"), gx_string("ba")) == ('_' < 'A'));
  EXPECT_FALSE(gx_is_less_than(gx_string("abc"), gx_string("ABC")));
  EXPECT_EQ(gx_length(a200.c_str()), 200);
  expect_stop([] { gx_length(std::string(201, 'x').c_str()); }, gx_code::invalid_string,
              " !!! error in  gx_length : > max");
}

TEST(KeptText, SignsComeBackAsTheyWere) {
  struct case_t {
    std::string text, kept, plain;
  };
  const case_t cases[] = {
      {"10\u00b5F \u00b15%", "10\\u{B5}F \\u{B1}5%", "10uF +-5%"},
      {"4.7 k\u2126, 85 \u00b0C", "4.7 k\\u{2126}, 85 \\u{B0}C", "4.7 kohm, 85 degC"},
      {"\U0001D11E", "\\u{1D11E}", "?"},
      {"\\u{B5}", "\\u{5C}u{B5}", "\\u{B5}"},  // what looks like a sign is none
      {"\\u{B5 \\u{} \\u{x5} \\", "\\u{B5 \\u{} \\u{x5} \\", "\\u{B5 \\u{} \\u{x5} \\"},
      {"", "", ""},
  };
  for (const auto& [text, kept, plain] : cases) {
    EXPECT_EQ(gx_kept_text(text), kept);
    EXPECT_EQ(gx_shown_text(kept), text);
    EXPECT_EQ(gx_plain_text(kept), plain);
  }
  EXPECT_EQ(gx_kept_text("caf\xe9\x01"), "caf\\u{E9} ");  // Latin-1, and a control character
  EXPECT_EQ(gx_shown_length("10\\u{B5}F"), 4U);
  // Numbers of no character stay as they are.
  for (const char* no_sign : {"\\u{D800}", "\\u{110000}", "\\u{0B}", "\\u{0000000B5}", "\\u{-B5}"})
    EXPECT_EQ(gx_shown_text(no_sign), no_sign);
}
}  // namespace
