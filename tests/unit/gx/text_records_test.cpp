// The text records: what they hold, what they refuse, how they compare.
#include <algorithm>
#include <functional>
#include <string>

#include "gx/text/characters.h"
#include "gx/text/kept_text.h"
#include "gx/text/spelling.h"
#include "gx/text/strings.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/session_case.h"

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

// A text as it is, for a regular expression.
std::string exactly(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (std::string_view("\\()[]{}.*+?|^$").find(c) != std::string_view::npos) escaped += '\\';
    escaped += c;
  }
  return escaped;
}

TEST(TextRecords, ChecksSayWhatIsWrong) {
  gx_string_record_t string = gx_string("abc");
  gx_name_record_t name = gx_name("n");
  gx_value_record_t value = gx_value("v");
  string.char_[1] = '\t';
  value.char_[0] = static_cast<char>(200);
  const std::string bytes = " char_ : \"a.c..\"\n 'a' 97 '.' 9 'c' 99 '.' 0\n";
  const auto check = [&](std::int32_t len, const std::string& said) {
    string.len = name.len = value.len = len;
    const auto all = [&] {
      if (said.find("_string") != said.npos) gx_check_string(string);
      if (said.find("_name") != said.npos) gx_check_name(name);
      gx_check_value(value);
    };
    expect_stop(all, gx_code::invalid_string, exactly(said));
  };
  check(3,
        " !!! error in  gx_check_string  ( invalid char )  \n"
        " gx_check_string  : len 3    ind_char = 2   char : 9\n char_ : \"a.c..\"\n");
  check(-4, " !! error in gx_check_string ( < 0 ) : len -4\n" + bytes);
  check(200,
        " !!! error in  gx_check_string  ( too long )  \n gx_check_string  : len 200\n" + bytes);
  check(65,
        " !!! error in  gx_check_name  ( too long )  \n gx_check_name  : len 65\n"
        " char_ : \"n....\"\n");
  check(-1, " !! error in gx_check_name  ( < 0 ) \n gx_check_name  : len -1\n char_ : \"n....\"\n");
  check(2,
        " !!! error in  gx_check_name ( invalid char )  \n"
        " gx_check_name  : len 2    ind_char = 2   char : 0\n char_ : \"n....\"\n");
  check(97, " !!! error in  gx_check_value  ( too long )  \n gx_check_value  : len 97\n");
  check(-1, " !! error in gx_check_value  ( < 0 ) \n gx_check_value  : len -1\n");
  check(1,
        " !!! error in  gx_check_value  ( invalid char )  \n"
        " gx_check_value  : len 1    ind_char = 1   char : -56\n");
  expect_stop([&] { gx_copy_const(a200, string); }, gx_code::invalid_string,
              exactly(" !!! error in  copy_const : > max \n###  copy_const  : str_in(10) : "
                      "\"aaaaaaaaaa\"      len : 200\n"));
}

TEST(TextRecords, SourcesOfNoLengthAreRefused) {
  gx_string_record_t to;
  gx_name_record_t name;
  gx_value_record_t value;
  gx_string_record_t string = gx_string(a199);
  gx_name_record_t long_name = gx_name(a63);
  gx_value_record_t long_value = gx_value(std::string(95, 'a'));
  const std::pair<std::function<void()>, std::string> too_long[] = {
      {[&] { gx_string(a200); }, "copy_string"},
      {[&] { gx_concat_astr(a200, to); }, "concat_astr"},
      {[&] { gx_concat_const(a200, to); }, "concat_const"},
      {[&] { gx_name(a64); }, "copy_name"},
      {[&] { gx_copy_name(gx_string(a64), name); }, "copy_name"},
      {[&] { gx_value(std::string(96, 'a')); }, "copy_value"},
      {[&] { gx_copy_value(gx_string(std::string(96, 'a')), value); }, "copy_value"}};
  for (const auto& [copy, operation] : too_long)
    expect_stop(
        copy, gx_code::invalid_string,
        exactly(" !!! error in  " + operation + " : > max \n str_in (10) : \"aaaaaaaaaa\" \n"));
  const std::pair<std::function<void()>, std::string> of_records[] = {
      {[&] { gx_copy_line(string, to); }, "copy_line"},
      {[&] { gx_name_string(long_name, to); }, "name_string"},
      {[&] { gx_value_string(long_value, to); }, "value_string"},
      {[&] { gx_concat_line(string, to); }, "concat_line"},
      {[&] { gx_concat_name(long_name, to); }, "concat_name"},
      {[&] { gx_concat_value(long_value, to); }, "concat_value"}};
  for (const auto& [copy, operation] : of_records) {
    copy();
    string.len = long_name.len = long_value.len = -1;
    expect_stop(copy, gx_code::invalid_string,
                exactly(" !!! error in  " + operation + " : < 0 \n str_in (10) : \"\" \n"));
    string.len = 200;
    long_name.len = 64;
    long_value.len = 96;
    expect_stop(copy, gx_code::invalid_string,
                exactly(" !!! error in  " + operation + " : > max \n"));
    string.len = 199;
    long_name.len = 63;
    long_value.len = 95;
  }
}

TEST(TextRecords, WhatIsNoTextIsNotCopied) {
  gx_string_record_t bad = gx_string("abc"), to;
  bad.char_[1] = '\x1f';
  gx_name_record_t bad_name = gx_name("abc"), name;
  gx_value_record_t bad_value = gx_value("abc"), value;
  bad_name.char_[1] = bad_value.char_[1] = '\x7f';
  const std::function<void()> copies[] = {[&] { gx_copy_line(bad, to); },
                                          [&] { gx_copy_name(bad, name); },
                                          [&] { gx_copy_value(bad, value); },
                                          [&] { gx_name_string(bad_name, to); },
                                          [&] { gx_value_string(bad_value, to); },
                                          [&] { gx_concat_line(bad, to); },
                                          [&] { gx_concat_const("a\tb", to); },
                                          [&] { gx_concat_const("a", bad); },
                                          [&] { gx_string("a\tb"); },
                                          [&] { gx_name("a\tb"); },
                                          [&] { gx_value("a\tb"); },
                                          [&] { gx_concat_sp(bad); }};
  for (const auto& copy : copies) expect_stop(copy, gx_code::invalid_string, "invalid char");
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
  // What is the same: {x, y} for all kinds of both sides; and what one begins with.
  using texts_t = std::pair<const char*, const char*>;
  for (const auto& [x, y] : {texts_t{"abc", "ABC"},
                             {"", ""},
                             {"Vdd_1", "vDD_1"},
                             {"ab", "ABC"},
                             {"ABC", "ab"},
                             {"[", "{"},
                             {"@", "`"},
                             {"abd", "abc"},
                             {"bc", "abc"}}) {
    const bool same = gx_upper(x) == gx_upper(y), begins = gx_upper(y).starts_with(gx_upper(x));
    const bool idens[] = {gx_iden(x, y),
                          gx_string_iden_string(gx_string(x), gx_string(y)),
                          gx_const_iden_string(x, gx_string(y)),
                          gx_iden_string(x, gx_string(y)),
                          gx_name_iden_string(gx_name(x), gx_string(y)),
                          gx_name_iden_name(gx_name(x), gx_name(y)),
                          gx_const_iden_name(x, gx_name(y)),
                          gx_value_iden_value(gx_value(x), gx_value(y)),
                          gx_const_iden_value(x, gx_value(y))};
    const bool equals[] = {gx_equal(x, y),
                           gx_const_equal_string(x, gx_string(y)),
                           gx_equal_string(x, gx_string(y)),
                           gx_name_equal_string(gx_name(x), gx_string(y)),
                           gx_string_equal_name(gx_string(x), gx_name(y)),
                           gx_value_equal_string(gx_value(x), gx_string(y)),
                           gx_string_equal_value(gx_string(x), gx_value(y))};
    EXPECT_EQ(std::ranges::count(idens, same), std::ssize(idens)) << x << " " << y;
    EXPECT_EQ(std::ranges::count(equals, begins), std::ssize(equals)) << x << " " << y;
  }
  EXPECT_EQ(gx_upper("az_AZ{`09"), "AZ_AZ{`09");
  EXPECT_TRUE(gx_is_blank("  ") && gx_is_blank("") && !gx_is_blank(" a "));

  gx_string_record_t damaged = gx_string("abc");
  damaged.len = -1;
  EXPECT_FALSE(gx_string_iden_string(damaged, damaged));
  EXPECT_FALSE(gx_const_equal_string("", damaged));
  damaged.len = 100000;
  EXPECT_FALSE(gx_string_equal_name(damaged, gx_name("abc")));
  EXPECT_FALSE(gx_const_iden_string(std::string(201, 'a'), gx_string(a199)));
  gx_string_record_t full = gx_string(a199);
  full.char_[full.len++] = 'a';
  EXPECT_TRUE(gx_const_iden_string(a200, full));

  EXPECT_TRUE(gx_is_less_than(gx_string("ab"), gx_string("ABC")));
  EXPECT_FALSE(gx_is_less_than(gx_string("B_1"), gx_string("ba")));
  EXPECT_TRUE(gx_is_less_than(gx_string("a"), gx_string("B")));
  EXPECT_FALSE(gx_is_less_than(gx_string("abc"), gx_string("ABC")));
  EXPECT_EQ(gx_length(a200.c_str()), 200);
  expect_stop([] { gx_length(std::string(201, 'x').c_str()); }, gx_code::invalid_string,
              " !!! error in  gx_length : > max");
}

TEST(KeptText, WhatIsNoUtf8AndThePlacesOfSigns) {
  EXPECT_EQ(gx_ascii("\n\t"), "\n ");
  EXPECT_EQ(gx_kept_text("caf\xe9\x01"), "caf\\u{E9} ");  // Latin-1, and a control character
  for (const std::size_t shown : {0U, 1U, 2U, 3U, 4U})
    EXPECT_EQ(gx_kept_place("1\\u{B5}F", shown), (std::vector{0U, 1U, 7U, 8U, 8U}[shown])) << shown;
}

TEST(Characters, OfUtf8AndOfBytesThatAreNone) {
  const struct {
    std::string bytes;
    std::u32string characters;
  } cases[] = {
      {"a\u00a0\u07ff", U"a\u00a0\u07ff"},
      {"\u0800\ud7ff\ue000\uffff", U"\u0800\ud7ff\ue000\uffff"},
      {"\U00010000\U0010ffff", U"\U00010000\U0010ffff"},
      {"\xc1\x80|\xc2", U"\u00c1\u0080|\u00c2"},          // too long, cut
      {"\xe0\x9f\xbf", U"\u00e0\u009f\u00bf"},            // too long
      {"\xed\xa0\x80", U"\u00ed\u00a0\u0080"},            // half of a pair
      {"\xf4\x90\x80\x80", U"\u00f4\u0090\u0080\u0080"},  // beyond the last
      {"\xf0\x8f\xbf\xbf\xf5", U"\u00f0\u008f\u00bf\u00bf\u00f5"},
      {"\xe2\x82z", U"\u00e2\u0082z"},
  };
  for (const auto& [bytes, characters] : cases) {
    EXPECT_EQ(gx_characters(bytes), characters) << bytes;
    std::string again;
    for (const char32_t code : characters) gx_append_utf8(again, code);
    EXPECT_EQ(gx_characters(again), characters) << bytes;
  }
}

// "WHAT TEXT": as it is then, and back again.
class spelling_session {
 public:
  explicit spelling_session(std::string_view) {}
  static lines_t answer(const std::string& line) {
    const auto blank = line.find(' ');
    const std::string what = line.substr(0, blank), text = line.substr(blank + 1);
    if (what == "keep") {
      const std::string kept = gx_kept_text(text);
      return {kept, gx_plain_text(kept), gx_shown_text(kept)};
    }
    if (what == "show") return {gx_shown_text(text), std::to_string(gx_shown_length(text))};
    if (what == "ascii") return {gx_ascii(text)};
    const std::string spelled = what == "spell" ? gx_spelled_name(text) : text;
    return {spelled, gx_drawn_name(spelled)};
  }
};

TEST(Spelling, ComesBackAsItWas) { expect_sessions<spelling_session>("values/spelling.txt"); }
}  // namespace
