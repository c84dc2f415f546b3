// A design file in memory: the bytes of the file, checked once, and its records decoded one by one
// when they are asked for. Used by the library and by the dump tool.
#pragma once

#include <array>
#include <cstdlib>
#include <memory>

#include "expand/design_records.h"

enum class kvi_load_result {
  loaded,
  too_short,  // ends before what its header announces
  damaged     // no design file, not written to its end, or an impossible count, length or index
};

class kvi_design_t {
 public:
  // Reads the open file from its start. What is loaded is sound: every index is 0 or that of a
  // record, ranges of pins and properties lie within their arrays, chains end. Otherwise the design
  // is empty.
  kvi_load_result load(int fd);

  const kv_general_info_record_t& info() const { return info_; }
  const kv_list_t<kv_prop_type_record_t>& list(std::size_t part) const { return lists_[part]; }
  const auto& property_instance() const { return lists_[0]; }
  const auto& property_pin() const { return lists_[1]; }
  const auto& property_net() const { return lists_[2]; }

  std::int32_t count(kv_array array) const { return count_[static_cast<std::size_t>(array)]; }
  template <typename Record>
  std::int32_t count() const {
    return count(kv_part_of<Record>());
  }
  template <typename Record>
  bool holds(std::int32_t index) const {
    return index >= 1 && index <= count<Record>();
  }
  // Record `index`, which the design holds.
  template <typename Record>
  Record get(std::int32_t index) const {
    Record record;
    kv_decode_record(part<Record>() + position(index) * kv_layout<Record>::size, record);
    return record;
  }
  // The characters of a string; "" for 0.
  std::string_view text(std::int32_t string_index) const {
    if (!holds<kv_string_record_t>(string_index)) return {};
    const auto string = get<kv_string_record_t>(string_index);
    if (string.len == 0) return {};
    const auto* chars = reinterpret_cast<const char*>(part<char>());
    return {chars + position(string.index), static_cast<std::size_t>(string.len)};
  }

 private:
  static std::size_t position(std::int32_t index) { return static_cast<std::size_t>(index - 1); }
  template <typename Record>
  const std::uint8_t* part() const {
    return bytes_.get() + offset_[static_cast<std::size_t>(kv_part_of<Record>())];
  }
  bool read_parts(int fd, std::size_t size);
  void decode_lists();
  void clear() { *this = {}; }

  struct free_bytes {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
  };
  static constexpr std::size_t parts = std::tuple_size_v<decltype(kv_array_parts)>;

  kv_general_info_record_t info_;
  std::array<kv_list_t<kv_prop_type_record_t>, std::size(kv_list_parts)> lists_;
  std::array<std::int32_t, parts> count_{};
  std::array<std::size_t, parts> offset_{};  // of each part, behind the header
  std::unique_ptr<std::uint8_t[], free_bytes> bytes_;
};
