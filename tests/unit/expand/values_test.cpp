#include "expand/sheet/values.h"

#include <string>

#include "expand/sheet/expression.h"
#include "expand/store.h"
#include "gx/text/strings.h"

namespace {

const kv_scope_t top{kv_sext, kv_sext, 1, 0};
const kv_scope_t in_macro{kv_sext, kv_sext, 2, 1};

// Parameters R1 = 1, 2, 3, Zero = 1, 0, 1 and W = 7; macro 1 keeps W = 5 (integer), T = 2, 3, 4
// steps (time), L = 1.5 (real) and S (string).
class ValuesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    kv_sext = kv_defref_exp_rec_t{};
    const auto parameter = [](std::string_view name, float a, float b, float c) {
      kv_sext.parameter.entry[static_cast<std::size_t>(kv_sext.parameter.count++)] = {
          gx_string(name), {a, b, c}};
    };
    parameter("R1", 1, 2, 3);
    parameter("Zero", 1, 0, 1);
    parameter("W", 7, 7, 7);
    for (std::string_view name : {"P", "T", "L", "S", "W"}) {
      auto& list = kv_sext.property_instance;
      list.entry[static_cast<std::size_t>(list.count++)].name = gx_string(name);
    }
    kv_sext.time_step = 0.5F;
    const std::int32_t first = kv_save_prop_int(5, 5, 5);
    kv_save_prop_time(2, 3, 4);
    kv_save_prop_real(1.5F, 1.5F, 1.5F);
    kv_save_prop_str("text");
    kv_save_prop_int(9, 9, 9);
    kv_sext.macros.append(1);
    kv_ptrto_macro_rec(1).first_prop = first;
    kv_ptrto_macro_rec(1).nb_of_property = 5;
  }
  void TearDown() override { kv_sext = kv_defref_exp_rec_t{}; }
};
using ValuesDeathTest = ValuesTest;

template <typename Number>
std::string shown(const kv_values_t<Number>& values) {
  char text[100];
  std::snprintf(text, sizeof text, "%g %g %g%s", static_cast<double>(values.value1),
                static_cast<double>(values.value2), static_cast<double>(values.value3),
                values.error_found ? " error" : "");
  return text;
}

struct value_case {
  std::string_view text, result;
};

TEST_F(ValuesTest, IntegerLists) {
  const value_case cases[] = {
      {"5", "5 5 5"},
      {"2 6", "2 4 6"},
      {"2,5", "2 3 5"},
      {"1,2,3,4", "1 2 3"},
      {"1 2 3 x", "1 2 3"},
      {"", "0 0 0"},
      {" \"' ", "0 0 0"},
      {"\"1_2' \"3\"", "1 2 3"},
      {"32767", "32767 32767 32767"},
      {"-1", "0 0 0 error"},
      {"1.5", "0 0 0 error"},
      {"1 2x", "0 0 0 error"},
      {"+1", "0 0 0 error"},
      {"32768", "0 0 0 error"},
      {"99999999999999999999", "0 0 0 error"},
      {"(1.5)", "2 2 2"},
      {"(0-1.5)", "-1 -1 -1"},
      {"(0-1.6)", "-2 -2 -2"},
      {"(32767.4)", "32767 32767 32767"},
      {"(32767.5)", "0 0 0 error"},
      {"(0-32769)", "0 0 0 error"},
      {"(R1*10000)", "10000 20000 30000"},
      {"(R1*20000)", "0 0 0 error"},
      {"(1", "0 0 0 error"},
  };
  for (const auto& c : cases) EXPECT_EQ(shown(kv_decode_3_valuei(c.text, top)), c.result) << c.text;
  EXPECT_EQ(kv_decode_3_valuei("2 6", top).num_values, 2);
  EXPECT_EQ(kv_decode_3_valuei("", top).num_values, 0);
}

TEST_F(ValuesTest, RealListsAndExpressions) {
  const value_case cases[] = {
      {"1.25 2.5", "1.25 1.875 2.5"},
      {"1.2.5", "1.25 1.25 1.25"},  // a digit behind any point divides by ten
      {".5", "0.5 0.5 0.5"},
      {"1e3", "0 0 0 error"},
      {"-1", "0 0 0 error"},
      {"(R1*2)", "2 4 6"},
      {" '(r1*2)\" ", "2 4 6"},
      {"(2+3*4)", "14 14 14"},
      {"((1+2)*3)", "9 9 9"},
      {"(2*3-4*5/2+1)", "-3 -3 -3"},
      {"(-R1+10)", "9 8 7"},
      {"(-2*3)", "-6 -6 -6"},
      {"(8/2/2)", "2 2 2"},
      {"(1-(2-(3-4)))", "-2 -2 -2"},
      {"((1+2)*(3+4))", "21 21 21"},
      {"( R 1 )", "1 2 3"},  // blanks do not count
      {"((10.5)+(10.25))", "20.75 20.75 20.75"},
      {"(16777216+1+1-16777216)", "0 0 0"},  // every step is rounded to float32
      {"(())", "0 0 0"},
      {"( )", "0 0 0"},
      {"()", "0 0 0 error"},
      {"(1/0)", "0 0 0 error"},
      {"(1/Zero)", "0 0 0 error"},  // 0 at the second position only
      {"(1/(R1-R1))", "0 0 0 error"},
      {"(1+2", "0 0 0 error"},
      {"(1+2))", "0 0 0 error"},
      {"(1)+2)*((3)", "0 0 0 error"},
      {"(1+)", "0 0 0 error"},
      {"(1+*2)", "0 0 0 error"},
      {"(2*-3)", "0 0 0 error"},
      {"(*2)", "0 0 0 error"},
      {"(2(3))", "0 0 0 error"},
      {"((2)3)", "0 0 0 error"},
      {"((2)(3))", "0 0 0 error"},
      {"(1e3)", "0 0 0 error"},
      {"(^abcd)", "0 0 0 error"},
      {"(NONE+1)", "0 0 0 error"},
      {"(P)", "0 0 0 error"},  // kept properties are known below the top level only
  };
  for (const auto& c : cases) EXPECT_EQ(shown(kv_decode_3_valuer(c.text, top)), c.result) << c.text;
  EXPECT_EQ(shown(kv_conv_complex_expr("R1", top)), "0 0 0 error");  // too short for a name
  EXPECT_EQ(shown(kv_conv_complex_expr("Zero", top)), "1 0 1");
  EXPECT_EQ(shown(kv_conv_complex_expr(std::string(201, '1'), top)), "0 0 0");
}

TEST_F(ValuesTest, NamesOfTheEnclosingMacro) {
  const value_case cases[] = {
      {"(P+1)", "6 6 6"}, {"(t*2)", "2 3 4"},     {"(L)", "1.5 1.5 1.5"},
      {"(W)", "7 7 7"},   {"(S)", "0 0 0 error"}, {"(Q)", "0 0 0 error"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(shown(kv_decode_3_valuer(c.text, in_macro)), c.result) << c.text;
  }
  for (std::string_view text : {"(P+1)", "(2*( p ))", "(1+Q)", "(1+_x", "'(P)"}) {
    EXPECT_TRUE(kv_depends_on_macro(text, kv_sext)) << text;
  }
  for (std::string_view text : {"P", "(W*R1)", "(r 1)", "(1.5+.5)", "1 2", "", "()"}) {
    EXPECT_FALSE(kv_depends_on_macro(text, kv_sext)) << text;
  }
}

TEST_F(ValuesDeathTest, AMacroOutsideTheStoreEndsTheProgram) {
  EXPECT_EXIT(kv_decode_3_valuer("(P)", (kv_scope_t{kv_sext, kv_sext, 2, 2})),
              ::testing::ExitedWithCode(EXIT_FAILURE), "");
}

TEST_F(ValuesTest, TimesAreWholeSteps) {
  struct {
    float step;
    std::string_view text, result;
  } const cases[] = {
      {2.5F, "10", "4 4 4"},   {2.5F, "(10+1.3)", "5 5 5"}, {1, "1.5 2.4", "2 2 2"},
      {0, "10", "0 0 0"},      {-1, "10", "0 0 0"},         {0, "x", "0 0 0 error"},
      {0.1F, "0.25", "3 3 3"}, {1, "(0-1.5)", "-1 -1 -1"},  {0.001F, "9999999", "0 0 0 error"},
  };
  for (const auto& c : cases) {
    kv_sext.time_step = c.step;
    EXPECT_EQ(shown(kv_decode_3_valuet(c.text, top)), c.result) << c.text;
  }
}

TEST(SignalStateTest, LevelStrengthAndFixed) {
  struct {
    std::string_view word;
    int state;
    bool fixed;
  } const cases[] = {{"0", 17, false}, {"1F", 19, true},  {"XZ", 6, false}, {"1RF", 11, true},
                     {"iu", 0, false}, {"xWf", 14, true}, {"IS", 16, false}};
  for (const auto& c : cases) {
    const kv_state_t state = kv_statechar_state(c.word);
    EXPECT_FALSE(state.error_found) << c.word;
    EXPECT_EQ(state.state, c.state) << c.word;
    EXPECT_EQ(state.fixed, c.fixed) << c.word;
  }
  for (std::string_view word : {"", "2", "F", "0A", "0ZR", "0AF", "0ZFF"}) {
    EXPECT_TRUE(kv_statechar_state(word).error_found) << word;
  }
}

}  // namespace
