// What values of a simulator are made of: numbers of buses, conditions, places of texts.
#include "app/values/bits.h"
#include "app/values/condition.h"
#include "app/values/text_room.h"
#include "tests/support/design_session.h"

namespace {

TEST(Bits, AreANumberWhereEachIsClear) {
  const auto number = [](std::vector<double> bits, bool falls) {
    std::vector<rs_value_t> values;
    for (const double bit : bits) values.push_back({bit, 0});
    return kv_number_of_bits(values, falls, 0, 1.8);
  };
  EXPECT_EQ(number({1.8, 0.1, 1.7, 0}, true), 10U);
  EXPECT_EQ(number({1.8, 0.1, 1.7, 0}, false), 5U);
  EXPECT_EQ(number(std::vector<double>(64, 1.8), true), UINT64_MAX);
  EXPECT_FALSE(number({1.8, 0.9}, true));
  EXPECT_FALSE(number({1.19}, true) || number({0.61}, true));
  EXPECT_EQ(kv_number_of_bits({{2.3, 0}, {3.7, 0}, {2, 0}}, false, 2, 4), 2U);
  EXPECT_FALSE(number({std::numeric_limits<double>::quiet_NaN()}, true));
  EXPECT_FALSE(number(std::vector<double>(65, 0.0), true));
}

// Cells of four pixels: what is told apart is at least that far away.
TEST(TextRoom, NoTextIsDrawnOverAnother) {
  kv_text_room_t room({100, 100, 199, 199});
  EXPECT_TRUE(room.take_free({110, 110, 130, 118}));
  EXPECT_FALSE(room.take_free({130, 110, 150, 118}));
  EXPECT_FALSE(room.take_free({104, 100, 114, 111}));
  EXPECT_TRUE(room.take_free({136, 110, 150, 118}));
  EXPECT_FALSE(room.take_free({190, 150, 200, 158}));  // beyond the picture
  room.take({50, 180, 120, 500});                      // in part
  EXPECT_FALSE(room.take_free({112, 190, 116, 196}));
  EXPECT_TRUE(room.take_free({124, 190, 130, 196}));
}

TEST(Condition, IsReadAsItIsWritten) {
  const struct {
    const char* text;
    bool holds;
  } cases[] = {{"a<b", true},         {"a>b", false},     {"a+2*b=5", true},
               {"(a+2)*b=6", true},   {"b-a-1=0", true},  {"-a=-1", true},
               {"abs(a-b)>=1", true}, {"a!=b", true},     {"a/b<=500m", true},
               {"a<b & a>b", false},  {"a<b&&b<3", true}, {"b=2.0000000001", true},
               {"nan=nan", false},    {"nan!=1", false},  {"1e-9<1n", false}};
  for (const auto& [text, holds] : cases) {
    kv_condition_t condition;
    std::string fault;
    ASSERT_TRUE(condition.read(text, fault)) << text << fault;
    std::vector<double> values;
    for (const auto& name : condition.parameters()) {
      values.push_back(name == "a"   ? 1
                       : name == "b" ? 2
                                     : std::numeric_limits<double>::quiet_NaN());
    }
    EXPECT_EQ(condition.holds(values), holds) << text;
  }
  for (const char* text : {"", "a", "a<", "a<b<c", "(a<b", "a<b)", "1n5<2", "a<b|c", "a ? b"}) {
    kv_condition_t condition;
    std::string fault;
    EXPECT_FALSE(condition.read(text, fault)) << text;
  }
}

}  // namespace
