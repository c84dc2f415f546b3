#include "expand/store.h"

#include <string>

namespace {

class StoreTest : public ::testing::Test {
 protected:
  void SetUp() override { kv_empty_store(); }
  static std::int32_t start_of(std::int32_t string) { return kv_ptrto_string_rec(string).index; }
};
using StoreDeathTest = StoreTest;

const std::string text_100(100, 'a');

TEST_F(StoreTest, StringsArePackedWithoutGapsInsideABlock) {
  EXPECT_EQ(kv_save_string("abc"), 1);
  EXPECT_EQ(kv_save_string(""), 2);
  EXPECT_EQ(kv_save_string(text_100), 3);
  EXPECT_EQ(start_of(1), 1);
  EXPECT_EQ(start_of(2), 3);  // an empty string takes no character
  EXPECT_EQ(start_of(3), 4);
  EXPECT_EQ(kv_sext.chars.count, 103);
  EXPECT_EQ(kv_string_view(1), "abc");
  EXPECT_EQ(kv_string_view(2), "");
  EXPECT_EQ(kv_string_view(3), text_100);
  EXPECT_EQ(kv_string_view(0), "");
  const gx_string_record_t copy = kv_copy_string_kv_gx(1);
  EXPECT_EQ(gx_view(copy), "abc");
}

TEST_F(StoreTest, TheLastPositionOfACharacterBlockIsNeverUsed) {
  for (int i = 0; i < 9; ++i) kv_save_string(text_100);
  const std::int32_t fits = kv_save_string(text_100.substr(1));  // ends at 999
  EXPECT_EQ(start_of(fits), 901);
  const std::int32_t next = kv_save_string("b");  // would end at 1000
  EXPECT_EQ(start_of(next), 1001);
  EXPECT_EQ(kv_sext.chars.count, 1001);
  EXPECT_EQ(kv_sext.chars[1000], '\0');
}

TEST_F(StoreTest, ChainsAreWalkedFromTheirFirstElement) {
  kv_sext.nets.append(1);
  kv_sext.pins.append(4);
  kv_sext.net_childs.append(2);
  kv_net_record_t& net = kv_ptrto_net_rec(1);
  net.first_pin_in_ind = 3;
  kv_ptrto_pin_rec(3).next_pin_in_ind = 1;
  kv_ptrto_pin_rec(1).next_pin_in_ind = 4;
  net.first_pin_out_ind = 2;
  net.first_child = 2;
  kv_ptrto_net_child_rec(2).next_child = 1;
  EXPECT_EQ(&kv_net_ptrto_pin_in_rec(1, 1), &kv_ptrto_pin_rec(3));
  EXPECT_EQ(&kv_net_ptrto_pin_in_rec(1, 3), &kv_ptrto_pin_rec(4));
  EXPECT_EQ(&kv_net_ptrto_pin_out_rec(1, 1), &kv_ptrto_pin_rec(2));
  EXPECT_EQ(&kv_net_ptrto_net_child_rec(1, 2), &kv_ptrto_net_child_rec(1));
  const auto failed = ::testing::ExitedWithCode(EXIT_FAILURE);
  EXPECT_EXIT(kv_net_ptrto_pin_in_rec(1, 4), failed, "");
  EXPECT_EXIT(kv_net_ptrto_net_child_rec(1, 3), failed, "");
  kv_ptrto_pin_rec(2).next_pin_out_ind = 5;
  EXPECT_EXIT(kv_net_ptrto_pin_out_rec(1, 1), failed, "");
}

TEST_F(StoreDeathTest, WhatTheStoreCannotHoldEndsTheProgram) {
  const auto failed = ::testing::ExitedWithCode(EXIT_FAILURE);
  EXPECT_EXIT(kv_save_string(text_100 + "a"), failed, "");
  EXPECT_EXIT(kv_ptrto_net_rec(0), failed, "");
  EXPECT_EXIT(kv_ptrto_pin_rec(1), failed, "");
  EXPECT_EXIT(
      {
        kv_sext.props.append(kv_start_records);
        kv_ptrto_prop_rec(kv_start_records).prop_type = kv_prop_int;
        kv_debf = stderr;
        kv_save_prop_int(1, 2, 3);
      },
      failed, "KV_SAVE_PROP  : error of max_prop_cur  : 500001   500000\n KV_ERROR_STOP  \n");
  EXPECT_EXIT(
      {
        // 10 strings of 99 characters fill a block; the 5000th ends the last one.
        for (int i = 0; i < 5000; ++i) kv_save_string(text_100.substr(1));
        std::fprintf(stderr, "%d", kv_sext.chars.count);
        kv_save_string(text_100);
      },
      failed, "^499990$");
}

}  // namespace
