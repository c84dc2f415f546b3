// The entry of an array by an index of any integer type; the caller knows that it is in range.
#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

template <typename Array, std::integral Index>
constexpr decltype(auto) gx_at(Array&& array, Index index) {
  return std::forward<Array>(array)[static_cast<std::size_t>(index)];
}
