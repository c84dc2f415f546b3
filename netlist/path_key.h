// How paths are compared: by their keys, in which letters are capitals and "." and ":" stand as
// "/", as simulators write paths, too.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

inline constexpr std::array<char, 256> kv_path_folds = [] {
  std::array<char, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const char c = static_cast<char>(i);
    table[i] = c == '.' || c == ':' ? '/' : c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  }
  return table;
}();
inline char kv_path_folded(char c) { return kv_path_folds[static_cast<unsigned char>(c)]; }

// "/xr.x2:mp1" is "/XR/X2/MP1".
inline std::string kv_path_key(std::string_view path) {
  std::string key(path);
  std::ranges::transform(key, key.begin(), kv_path_folded);
  return key;
}
// Whether the key of a path begins with `key`.
inline bool kv_path_begins(std::string_view path, std::string_view key) {
  return path.size() >= key.size() &&
         std::equal(key.begin(), key.end(), path.begin(),
                    [](char wanted, char c) { return kv_path_folded(c) == wanted; });
}

// Whether the last name of a path has `key` in it, or the whole path where `key` has a separator.
inline bool kv_path_has(std::string_view path, std::string_view key) {
  const auto is_separator = [](char c) { return kv_path_folded(c) == '/'; };
  if (std::ranges::none_of(key, is_separator)) {
    auto begin = path.size();
    while (begin > 0 && !is_separator(path[begin - 1])) --begin;
    path.remove_prefix(begin);
  }
  const auto same = [](char c, char wanted) { return kv_path_folded(c) == wanted; };
  return std::search(path.begin(), path.end(), key.begin(), key.end(), same) != path.end();
}

// The same for all texts that `folded` makes the same.
template <typename Folded>
std::size_t kv_hash_of(std::string_view text, Folded folded) {
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(folded(c))) * 1099511628211U;
  return static_cast<std::size_t>(hash ^ hash >> 32);
}
