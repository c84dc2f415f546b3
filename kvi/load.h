// A design file, mapped and checked: its records are decoded one by one when they are asked for.
// Used by the library and by the tools.
#pragma once

#include <array>
#include <iterator>
#include <string>

#include "gx/text/at.h"
#include "netlist/netlist.h"
#include "platform/mapped_file.h"

enum class kvi_load_result {
  loaded,
  unreadable,  // cannot be opened, or is no file
  locked,      // another process writes it
  too_short,   // ends before what its header announces
  damaged,     // no design file, not written to its end, or records that cannot be
  no_memory
};

class kvi_design_t {
 public:
  // Maps the open file and checks it. What is loaded is sound: every record is in its place, every
  // index is 0 or that of a record, pins lie with their instances, chains end and are as long as
  // their counters say. Otherwise the design is empty, and `damage` names the record that is wrong
  // ("net 17") when it is one. Never throws.
  kvi_load_result load(int fd, std::string* damage = nullptr);

  // The file still is what was loaded: nobody cut it or began to write it again. Looks at the
  // header in the mapped file, which a run clears first. What is read while the file changes may
  // be wrong, but is never out of bounds.
  bool is_unchanged() const;

  const kv_general_info_record_t& info() const { return info_; }
  const kv_kept_lists_t& kept() const { return kept_; }
  const kv_prop_list_t& list(std::size_t part) const {
    return kept_.*gx_at(kv_list_parts, part).list;
  }

  std::int32_t count(kv_array array) const { return gx_at(count_, array); }
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
    kv_decode_record(file_.bytes() + place_of<Record>(index), record);
    return record;
  }
  // One field of record `index`, which the design holds.
  template <auto Member>
  auto number(std::int32_t index) const {
    using record = typename kv_member_t<Member>::record;
    typename kv_member_t<Member>::value value{};
    kv_decode_value(file_.bytes() + place_of<record>(index) + kv_offset_of<Member>(), value);
    return value;
  }
  // The characters of a string; "" for 0.
  std::string_view text(std::int32_t string_index) const {
    if (!holds<kv_string_record_t>(string_index)) return {};
    const auto string = get<kv_string_record_t>(string_index);
    if (string.len <= 0 || !holds<char>(string.index) ||
        string.len > count<char>() - string.index + 1) {
      return {};
    }
    const auto* chars = reinterpret_cast<const char*>(file_.bytes());
    return {chars + place_of<char>(string.index), static_cast<std::size_t>(string.len)};
  }

  // The bytes of a record that the design holds, in the mapped file.
  template <typename Record>
  const std::uint8_t* bytes_of(std::int32_t index) const {
    return file_.bytes() + place_of<Record>(index);
  }
  // Where record `index` begins in the file.
  template <typename Record>
  std::size_t place_of(std::int32_t index) const {
    return gx_at(offset_, kv_part_of<Record>()) +
           static_cast<std::size_t>(index - 1) * kv_layout<Record>::size;
  }

 private:
  kvi_load_result map(int fd);
  void decode_lists();
  void clear() { *this = {}; }

  static constexpr std::size_t header_size = kv_layout<kv_general_info_record_t>::size;
  static constexpr std::size_t parts = std::tuple_size_v<decltype(kv_array_parts)>;

  kv_general_info_record_t info_;
  std::array<std::uint8_t, header_size> header_{};
  kv_kept_lists_t kept_;
  std::array<std::int32_t, parts> count_{};
  std::array<std::size_t, parts> offset_{};  // of each part, from the start of the file
  x_mapped_file file_;
};

// The mapped design as a netlist.
template <>
struct kv_source_t<kvi_design_t> {
  template <typename Record>
  static std::int32_t count(const kvi_design_t& design) {
    return design.count<Record>();
  }
  template <auto Member>
  static auto number(const kvi_design_t& design, std::int32_t index) {
    return design.number<Member>(index);
  }
  static kv_prop_record_t property(const kvi_design_t& design, std::int32_t index) {
    return design.get<kv_prop_record_t>(index);
  }
  static std::string_view text(const kvi_design_t& design, std::int32_t index) {
    return design.text(index);
  }
  static const kv_kept_lists_t& kept(const kvi_design_t& design) { return design.kept(); }
  static const kv_general_info_record_t& info(const kvi_design_t& design) { return design.info(); }
};
using kvi_netlist_t = kv_netlist_t<kvi_design_t>;

// How the loading of a file went, and in words, with its name, when it failed.
struct kvi_loaded_t {
  kvi_load_result result = kvi_load_result::loaded;
  std::string message;
};
// Loads the open file `path` while holding the shared lock of those who read design files.
kvi_loaded_t kvi_load_design(kvi_design_t& design, int fd, const std::string& path);
// Opens the file at `path`, or the design file of the directory at `path`, and loads it.
kvi_loaded_t kvi_open_design(kvi_design_t& design, std::string path);

// Says, with the file's name, that a loaded design is no longer what the file holds.
std::string kvi_changed_message(const std::string& path);
