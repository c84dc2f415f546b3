// The names of an expanded design: every object that bears a simulation path, found by it.
//
// Paths are compared by their keys, in which letters are capitals and "." and ":" stand as "/": as
// simulators write paths, too.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "expand/design.h"

enum class kv_named : std::uint8_t { inst, macro, net, net_child, pin, pinm };
struct kv_hit_t {
  kv_named what = kv_named::inst;
  std::int32_t index = 0;
  friend auto operator<=>(const kv_hit_t&, const kv_hit_t&) = default;
};

std::string kv_path_key(std::string_view path);

// Made once for an expansion, which must stay as it is; 8 to 12 bytes for each instance, macro, net
// and child. Pins are found by what bears them, as most objects of a design are pins.
class kv_path_index_t {
 public:
  explicit kv_path_index_t(const kv_design_t& design);

  // What bears the path with the first of the keys that any has; at most `most`, in the order of
  // kv_named and of the index.
  std::vector<kv_hit_t> find(std::span<const std::string> keys, std::size_t most) const;
  // The same for paths that begin with a key: looks at all but the pins of what does not.
  std::vector<kv_hit_t> find_beginning(std::span<const std::string> keys, std::size_t most) const;

  std::string_view path(kv_hit_t hit) const;
  // The flat net that a child belongs to.
  std::int32_t net_of_child(std::int32_t child) const;

 private:
  static constexpr std::size_t kinds = 4;  // that are kept by their paths: those before the pins
  kv_hit_t hit_of(std::uint32_t number) const;
  bool has_path(kv_hit_t hit, std::string_view key) const;
  void find_whole(std::string_view key, std::vector<kv_hit_t>& hits) const;
  std::vector<kv_hit_t> find_key(std::string_view key, std::size_t most) const;

  const kv_design_t& design_;
  // Objects are numbered from 1 over the kinds: of each kind the number of its first.
  std::array<std::uint32_t, kinds + 1> first_{};
  // The last object with a hash, and behind each object the one before it; 0: none. The hashes are
  // taken modulo the length, a power of two.
  std::vector<std::uint32_t> last_with_, before_;
  std::vector<std::int32_t> net_of_child_;
};
