// Places of an array by a key, those of one key in their order: a table of fixed size.
#pragma once

#include <bit>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "gx/text/at.h"

constexpr std::uint64_t kv_mixed(std::uint64_t key, std::uint64_t more) {
  key = (key ^ more) * 0x9e3779b97f4a7c15U;
  return key ^ (key >> 29U);
}
constexpr std::uint64_t kv_key(std::initializer_list<std::uint64_t> parts) {
  std::uint64_t key = 1;
  for (const std::uint64_t part : parts) key = kv_mixed(key, part);
  return key;
}
inline std::uint64_t kv_text_key(std::string_view text) {
  return std::hash<std::string_view>{}(text);
}

class kv_key_chains_t {
 public:
  explicit kv_key_chains_t(std::size_t places)
      : slots_(std::bit_ceil(2 * places + 2)), next_(places, none) {}

  // Each place once, the last one first.
  void put(std::uint64_t key, std::int32_t place) {
    slot_t& slot = find(key);
    gx_at(next_, place) = slot.first;
    slot = {key, place};
  }
  // The first place of the key, which is taken out; -1 when none is left.
  std::int32_t take(std::uint64_t key) {
    slot_t& slot = find(key);
    const std::int32_t place = slot.first;
    if (place >= 0) slot.first = gx_at(next_, place) == none ? emptied : gx_at(next_, place);
    return place >= 0 ? place : -1;
  }

 private:
  // A slot that was emptied keeps its key, for those that were put after it.
  static constexpr std::int32_t none = -1, emptied = -2;
  struct slot_t {
    std::uint64_t key = 0;
    std::int32_t first = none;
  };
  slot_t& find(std::uint64_t key) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t at = kv_mixed(key, 0) & mask;
    while (slots_[at].first != none && slots_[at].key != key) at = (at + 1) & mask;
    return slots_[at];
  }

  std::vector<slot_t> slots_;
  std::vector<std::int32_t> next_;
};
