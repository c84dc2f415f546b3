// The entry of an array by an index of any integer or enumeration type; the caller knows that it is
// in range.
#pragma once

#include <concepts>
#include <cstddef>
#include <type_traits>
#include <utility>

template <typename Array, typename Index>
requires std::integral<Index> || std::is_enum_v<Index>
constexpr decltype(auto) gx_at(Array&& array, Index index) {
  return std::forward<Array>(array)[static_cast<std::size_t>(index)];
}
