// Chains of pins on buses: whatever the order, a chain holds each of its pins once and no other.
#include "expand/run/pin_chains.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "expand/store.h"

namespace {

constexpr int bits = 8;

class PinChains : public ::testing::Test {
 protected:
  PinChains() {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.nets.append(bits);
  }
  ~PinChains() override { kv_sext = kv_defref_exp_rec_t{}; }

  // A pin on members first..last (from 1).
  kv_chained add(int first, int last, kv_io_type type = kv_io_in) {
    const std::int32_t pin = kv_sext.pins.append(1);
    kv_sext.pins[pin].io_type = type;
    return kv_chain_pin(kv_sext, pin, first, last - first + 1);
  }
  // The input chain of a member, followed to its end by the links alone.
  std::vector<int> chain(int member) {
    std::vector<int> pins;
    for (auto pin = kv_sext.nets[member].first_pin_in_ind; pin != 0;
         pin = kv_sext.pins[pin].next_pin_in_ind) {
      pins.push_back(pin);
    }
    EXPECT_EQ(std::min<std::size_t>(pins.size(), 32767),
              static_cast<std::size_t>(kv_sext.nets[member].nb_pin_in));
    return pins;
  }
};

TEST_F(PinChains, SharedEndsAndSingleHeads) {
  EXPECT_EQ(add(1, 8), kv_chained::all);  // 1: a whole bus
  EXPECT_EQ(add(4, 4), kv_chained::all);  // 2: one bit, at the head
  EXPECT_EQ(add(1, 8), kv_chained::all);  // 3: behind 1 on all
  EXPECT_EQ(add(2, 3), kv_chained::all);  // 4: two bits, both at the head
  EXPECT_EQ(add(4, 4), kv_chained::all);  // 5
  EXPECT_EQ(chain(1), (std::vector<int>{1, 3}));
  EXPECT_EQ(chain(2), (std::vector<int>{4, 1, 3}));
  EXPECT_EQ(chain(3), (std::vector<int>{4, 1, 3}));
  EXPECT_EQ(chain(4), (std::vector<int>{5, 2, 1, 3}));
  // 6: the heads of 3 and 4 differ, so it has no link for both; it is on the first.
  EXPECT_EQ(add(3, 4), kv_chained::not_all);
  EXPECT_EQ(chain(3), (std::vector<int>{6, 4, 1, 3}));
  EXPECT_EQ(chain(4), (std::vector<int>{5, 2, 1, 3}));
}

TEST_F(PinChains, BothChainsOfABidirectionalPin) {
  add(1, 8, kv_io_io);
  add(2, 2, kv_io_out);
  EXPECT_EQ(chain(2), std::vector<int>{1});
  EXPECT_EQ(kv_sext.nets[2].nb_pin_out, 2);
  EXPECT_EQ(kv_sext.nets[2].first_pin_out_ind, 2);
  EXPECT_EQ(kv_sext.nets[1].nb_pin_out, 1);
}

TEST_F(PinChains, AChainGoesOnWhereItsCounterEnds) {
  for (int i = 0; i < 32767; ++i) ASSERT_EQ(add(1, 1), kv_chained::all);
  EXPECT_EQ(add(1, 1), kv_chained::uncounted);  // told once
  EXPECT_EQ(add(1, 1), kv_chained::all);
  EXPECT_EQ(add(1, 2), kv_chained::all);
  EXPECT_EQ(chain(1).size(), 32770U);
  EXPECT_EQ(kv_sext.nets[1].nb_pin_in, 32767);
  EXPECT_EQ(chain(2), std::vector<int>{32770});
}

TEST_F(PinChains, AnyOrderOfRangesKeepsChainsApart) {
  std::mt19937 random(7);
  for (int round = 0; round < 300; ++round) {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.nets.append(bits);
    std::vector<std::set<int>> all(bits + 1), sure(bits + 1);
    for (int pin = 1; pin <= 25; ++pin) {
      int first = static_cast<int>(random() % bits) + 1, last = first;
      if (random() % 2 != 0) last = static_cast<int>(random() % bits) + 1;
      if (first > last) std::swap(first, last);
      const bool everywhere = add(first, last) == kv_chained::all;
      for (int m = first; m <= last; ++m) {
        all[static_cast<std::size_t>(m)].insert(pin);
        if (everywhere) sure[static_cast<std::size_t>(m)].insert(pin);
      }
    }
    for (int m = 1; m <= bits; ++m) {
      const auto pins = chain(m);
      const std::set<int> got(pins.begin(), pins.end());
      const auto& may = all[static_cast<std::size_t>(m)];
      const auto& must = sure[static_cast<std::size_t>(m)];
      ASSERT_EQ(got.size(), pins.size()) << "round " << round;
      ASSERT_TRUE(std::includes(may.begin(), may.end(), got.begin(), got.end()));
      ASSERT_TRUE(std::includes(got.begin(), got.end(), must.begin(), must.end()));
    }
  }
}

}  // namespace
