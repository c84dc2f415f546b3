// The tables of a sheet check: names in the order they were met, at most 999 of them, and the first
// name that stands there twice.
#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

inline constexpr std::size_t kv_check_table_size = 999;

// The views are those of the sheet's own records.
struct kv_check_table_t {
  std::vector<std::string_view> names;
  bool overflowed = false;

  // False when this is the first name that finds the table full.
  bool add(std::string_view name) {
    if (names.size() < kv_check_table_size) {
      names.push_back(name);
      return true;
    }
    const bool first = !overflowed;
    overflowed = true;
    return !first;
  }
  void clear() {
    names.clear();
    overflowed = false;
  }
};

// The earliest name that stands there again later, letters in either case.
std::optional<std::string_view> kv_first_duplicate(std::span<const std::string_view> names);
