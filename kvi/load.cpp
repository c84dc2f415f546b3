// Reads a design file by its header and then in one go, decodes its records and checks all that a
// reader relies on.
#include "kvi/load.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "expand/design_records.h"

namespace {

constexpr std::size_t header_size = kv_layout<kv_general_info_record_t>::size;

// Fills `bytes` from the file at `offset`; false when the file ends before.
bool read_at(int fd, std::span<std::uint8_t> bytes, off_t offset) {
  while (!bytes.empty()) {
    const ssize_t n = ::pread(fd, bytes.data(), bytes.size(), offset);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(n));
    offset += n;
  }
  return true;
}

// The size of the image that the counts announce; nothing when a count cannot be.
std::optional<std::size_t> image_size(const kv_general_info_record_t& info) {
  bool sound = info.software_revision == 1.0F;
  std::size_t size = header_size;
  const auto add = [&](std::int32_t count, std::int32_t limit, std::size_t record_size) {
    sound = sound && count >= 0 && count <= limit;
    if (sound) size += static_cast<std::size_t>(count) * record_size;
  };
  for (const kv_list_part_t& part : kv_list_parts) {
    add(info.*part.count, kv_max_list, kv_layout<kv_prop_type_record_t>::size);
  }
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    add(info.*part.count, kv_max_records, kv_layout<record>::size);
  });
  return sound ? std::optional(size) : std::nullopt;
}

void decode_parts(const std::uint8_t* in, kv_defref_exp_rec_t& store) {
  for (const kv_list_part_t& part : kv_list_parts) {
    auto& list = store.*part.list;
    list.count = store.general_info.*part.count;
    for (std::int32_t i = 0; i < list.count; ++i) {
      kv_decode_record(in, list.entry[static_cast<std::size_t>(i)]);
      in += kv_layout<kv_prop_type_record_t>::size;
    }
  }
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    auto& array = store.*part.array;
    array.count = 0;
    std::int32_t left = store.general_info.*part.count;
    for (std::size_t block = 0; left > 0; ++block) {
      const std::int32_t n = std::min(left, kv_block_size);
      array.extend(n);
      record* to = array.blocks[block].get();
      for (std::int32_t i = 0; i < n; ++i, in += kv_layout<record>::size) {
        if constexpr (std::is_same_v<record, char>) {
          to[i] = static_cast<char>(*in);
        } else {
          kv_decode_record(in, to[i]);
        }
      }
      left -= n;
    }
  });
}

// --- checks of a decoded store

class store_check {
 public:
  explicit store_check(kv_defref_exp_rec_t& store) : store_(store) {
    kv_for_each_part([&](const auto& part) { count_[at_++] = (store.*part.array).count; });
  }

  bool sound() {
    return lists_sound() && each(store_.strings) && each(store_.props) && each(store_.insts) &&
           each(store_.pins) && each(store_.nets) && each(store_.net_childs) &&
           each(store_.macros) && each(store_.pinms) &&
           ends(store_.pins, &kv_pin_record_t::next_pin_in_ind) &&
           ends(store_.pins, &kv_pin_record_t::next_pin_out_ind) &&
           ends(store_.nets, &kv_net_record_t::next_sub_net) &&
           ends(store_.net_childs, &kv_net_child_record_t::next_child);
  }

 private:
  std::int32_t count(kv_array array) const { return count_[static_cast<std::size_t>(array)]; }

  bool lists_sound() const {
    for (const kv_list_part_t& part : kv_list_parts) {
      for (const kv_prop_type_record_t& entry : store_.*part.list) {
        for (const std::int32_t len : {entry.name.len, entry.prop_type.len}) {
          if (len < 0 || len >= gx_max_string_length) return false;
        }
      }
    }
    return true;
  }

  // Every record of an array: its indexes, and what only its kind has.
  template <typename Record>
  bool each(kv_blocked_t<Record>& array) const {
    for (std::int32_t i = 1; i <= array.count; ++i) {
      const Record& record = array[i];
      bool inside = true;
      kv_for_each_field(record, [&](const auto& field) {
        using member = std::remove_cvref_t<decltype(record.*field.member)>;
        if constexpr (std::is_same_v<member, std::int32_t>) {
          if (!field.target) return;
          const std::int32_t index = record.*field.member;
          inside = inside && index >= 0 && index <= count(*field.target);
        }
      });
      if (!inside || !own_sound(record)) return false;
    }
    return true;
  }

  bool range(std::int32_t first, std::int32_t n, kv_array array) const {
    return n == 0 || (n > 0 && first >= 1 && first <= count(array) - n + 1);
  }
  template <typename Record>
  bool properties(const Record& record, const kv_list_t<kv_prop_type_record_t>& list) const {
    return record.nb_of_property <= list.count &&
           range(record.first_prop, record.nb_of_property, kv_array::props);
  }
  bool own_sound(const kv_string_record_t& string) const {
    return string.len <= kv_max_string && range(string.index, string.len, kv_array::chars);
  }
  bool own_sound(const kv_prop_record_t& prop) const {
    return prop.prop_type >= kv_prop_string && prop.prop_type <= kv_prop_real;
  }
  bool own_sound(const kv_inst_record_t& inst) const {
    return range(inst.first_pin_ind, inst.nb_of_pin, kv_array::pins) &&
           properties(inst, store_.property_instance);
  }
  bool own_sound(const kv_pin_record_t& pin) const { return properties(pin, store_.property_pin); }
  bool own_sound(const kv_net_record_t& net) const { return properties(net, store_.property_net); }
  bool own_sound(const kv_net_child_record_t&) const { return true; }
  bool own_sound(const kv_macro_record_t& macro) const {
    return range(macro.first_pin_ind, macro.nb_of_pin, kv_array::pinms) &&
           properties(macro, store_.property_instance);
  }
  bool own_sound(const kv_pinm_record_t& pin) const { return properties(pin, store_.property_pin); }

  // No chain of `next` links runs in a circle. A record is visited once: `mark` tells in which
  // walk it was met.
  template <typename Record>
  static bool ends(kv_blocked_t<Record>& array, std::int32_t Record::*next) {
    std::vector<std::int32_t> mark(static_cast<std::size_t>(array.count) + 1, 0);
    for (std::int32_t start = 1; start <= array.count; ++start) {
      std::int32_t i = start;
      while (i != 0 && mark[static_cast<std::size_t>(i)] == 0) {
        mark[static_cast<std::size_t>(i)] = start;
        i = array[i].*next;
      }
      if (i != 0 && mark[static_cast<std::size_t>(i)] == start) return false;
    }
    return true;
  }

  kv_defref_exp_rec_t& store_;
  std::array<std::int32_t, std::tuple_size_v<decltype(kv_array_parts)>> count_{};
  std::size_t at_ = 0;
};

void empty(kv_defref_exp_rec_t& store) {
  kv_for_each_part([&](const auto& part) { (store.*part.array).count = 0; });
  for (const kv_list_part_t& part : kv_list_parts) (store.*part.list).count = 0;
}

}  // namespace

kvi_load_result kvi_load_design(int fd, kv_defref_exp_rec_t& store) {
  empty(store);
  std::uint8_t header[header_size];
  if (!read_at(fd, header, 0)) return kvi_load_result::too_short;
  kv_decode_record(header, store.general_info);
  const auto size = image_size(store.general_info);
  if (!size) return kvi_load_result::damaged;

  // The size is looked at before memory is taken for what the counts announce.
  struct stat info;
  if (::fstat(fd, &info) != 0 || info.st_size < static_cast<off_t>(*size)) {
    return kvi_load_result::too_short;
  }
  const std::unique_ptr<std::uint8_t[]> parts(new std::uint8_t[*size - header_size]);
  if (!read_at(fd, {parts.get(), *size - header_size}, header_size)) {
    return kvi_load_result::too_short;
  }
  decode_parts(parts.get(), store);
  store.time_step = store.general_info.time_step;
  if (store_check(store).sound()) return kvi_load_result::loaded;
  empty(store);
  return kvi_load_result::damaged;
}
