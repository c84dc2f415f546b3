// The arrays of an expanded design: blocks of 1000 records, addressed by a 1-based index, 0 = none.
// Records never move; an array that is emptied uses its blocks again.
#pragma once

#include <cstdint>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

#include "expand/block_memory.h"

inline constexpr int kv_block_size = 1000;
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

// `count` is the number of records in use.
template <typename Record>
struct kv_blocked_t {
  std::int32_t count = 0;
  std::int32_t limit = kv_start_records;
  std::vector<Record*> blocks;  // those behind `count` hold no records

  // Record `index` (from 1), which the caller has checked.
  Record& operator[](std::int32_t index) {
    const auto i = static_cast<std::uint32_t>(index - 1);
    return blocks[i / kv_block_size][i % kv_block_size];
  }
  const Record& operator[](std::int32_t index) const {
    const auto i = static_cast<std::uint32_t>(index - 1);
    return blocks[i / kv_block_size][i % kv_block_size];
  }
  bool holds(std::int32_t index) const { return index >= 1 && index <= count; }

  // Where position `at` (from 0) lies; its block and those before it exist then.
  Record* place(std::int32_t at) {
    const std::size_t block = static_cast<std::uint32_t>(at) / kv_block_size;
    if (block >= blocks.size()) [[unlikely]]
      grow(block);
    return blocks[block] + static_cast<std::uint32_t>(at) % kv_block_size;
  }
  // The next record, fresh; its index is `count` then.
  Record& add() {
    if (count >= limit) throw kv_store_full_t{kv_record_name<Record>, limit + 1, limit};
    Record* record = ::new (static_cast<void*>(place(count))) Record{};
    ++count;
    return *record;
  }
  // Makes room for indexes count + 1 .. count + n and returns the first; the new records are
  // fresh (all fields at their defaults).
  std::int32_t append(std::int32_t n) {
    if (n > limit - count) throw kv_store_full_t{kv_record_name<Record>, limit + 1, limit};
    const std::int32_t first = count + 1;
    for (std::int32_t i = 0; i < n; ++i) add();
    return first;
  }

 private:
  static_assert(std::is_trivially_destructible_v<Record>);

  [[gnu::noinline]] void grow(std::size_t block) {
    while (blocks.size() <= block) {
      blocks.push_back(reinterpret_cast<Record*>(memory_.take(kv_block_size * sizeof(Record))));
    }
  }
  kv_block_memory memory_;
};
