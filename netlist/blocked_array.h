// The arrays of an expanded design: blocks of 1000 records, addressed by a 1-based index, 0 = none.
// Records never move; an array that is emptied uses its blocks again.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "gx/text/at.h"
#include "netlist/block_memory.h"

inline constexpr int kv_block_size = 1000;
inline constexpr std::int32_t kv_min_records = 1000;           // the least that may be allowed
inline constexpr std::int32_t kv_start_records = 500'000;      // what an array may hold at first
inline constexpr std::int32_t kv_max_records = 2'000'000'000;  // what it may be allowed to hold

// What an array calls its records, as in max_<name>_cur; said once for each kind.
template <typename Record>
inline constexpr std::string_view kv_record_name{};
template <>
inline constexpr std::string_view kv_record_name<char> = "char";

// A design larger than its store: thrown where a record is asked for that an array may not hold.
struct kv_store_full_t {
  std::string_view name;  // of the array that is full: its counter is max_<name>_cur
  std::int32_t index;     // that was asked for
  std::int32_t limit;     // records that it may hold
};

template <typename Record>
class kv_blocked_t {
 public:
  std::int32_t count = 0;  // records in use; set_count() changes it

  constexpr kv_blocked_t() = default;
  kv_blocked_t(kv_blocked_t&&) = default;
  kv_blocked_t& operator=(kv_blocked_t&&) = default;

  // The blocks of an array that has none yet will lie in memory that others use, too; else in
  // memory of its own.
  void share(const std::shared_ptr<kv_block_memory>& memory) {
    if (blocks_.empty()) memory_ = memory;
  }

  // Record `index` (from 1), which the caller has checked.
  Record& operator[](std::int32_t index) {
    const auto i = static_cast<std::uint32_t>(index - 1);
    return blocks_[i / kv_block_size][i % kv_block_size];
  }
  const Record& operator[](std::int32_t index) const {
    const auto i = static_cast<std::uint32_t>(index - 1);
    return blocks_[i / kv_block_size][i % kv_block_size];
  }
  bool holds(std::int32_t index) const { return index >= 1 && index <= count; }
  // The records in use of a block (from 0), none after its last.
  std::span<const Record> in_block(std::int32_t block) const {
    const std::int32_t n = std::min(kv_block_size, count - block * kv_block_size);
    if (n <= 0) return {};
    return {gx_at(blocks_, block), static_cast<std::size_t>(n)};
  }
  std::int32_t limit() const { return limit_; }

  // The next record, fresh; its index is `count` then.
  Record& add() {
    if (count == fence_) [[unlikely]]
      reach();
    ++count;
    return *::new (static_cast<void*>(next_++)) Record{};
  }
  // Makes room for indexes count + 1 .. count + n and returns the first; the new records are
  // fresh (all fields at their defaults).
  std::int32_t append(std::int32_t n) {
    if (n > limit_ - count) throw full(limit_ + 1);
    const std::int32_t first = count + 1;
    for (std::int32_t i = 0; i < n; ++i) add();
    return first;
  }
  // The places of the next n records, not yet written; null unless they lie in the block under way
  // and leave its last place free.
  Record* add_in_block(std::int32_t n) {
    if (n >= fence_ - count) [[unlikely]]
      return nullptr;
    count += n;
    return std::exchange(next_, next_ + n);
  }
  // There are no records after `count`; places before it that were not in use are not written.
  void set_count(std::int32_t the_count) {
    count = the_count;
    fence_ = the_count;
  }
  void set_limit(std::int32_t limit) {
    limit_ = limit;
    fence_ = count;
  }
  // Makes the place of the next record ready.
  void reach() {
    if (count >= limit_) throw full(limit_ + 1);
    if (!memory_) memory_ = std::make_shared<kv_block_memory>();
    const auto block = static_cast<std::uint32_t>(count) / kv_block_size;
    while (blocks_.size() <= block) {
      blocks_.push_back(reinterpret_cast<Record*>(memory_->take(kv_block_size * sizeof(Record))));
    }
    const auto block_end = static_cast<std::int32_t>((block + 1) * kv_block_size);
    next_ = blocks_[block] + static_cast<std::uint32_t>(count) % kv_block_size;
    fence_ = std::min(limit_, block_end);
  }
  kv_store_full_t full(std::int32_t index) const { return {kv_record_name<Record>, index, limit_}; }

 private:
  static_assert(std::is_trivially_destructible_v<Record>);

  Record* next_ = nullptr;  // the place after `count`,
  std::int32_t fence_ = 0;  // while `count` is below this: the end of its block, or the limit
  std::int32_t limit_ = kv_start_records;
  std::vector<Record*> blocks_;
  std::shared_ptr<kv_block_memory> memory_;
};
