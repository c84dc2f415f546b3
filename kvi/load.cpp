// Reads a design file by its header and then in one go, and checks all that a reader relies on.
#include "kvi/load.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <span>
#include <vector>

namespace {

constexpr std::size_t header_size = kv_layout<kv_general_info_record_t>::size;
constexpr std::size_t entry_size = kv_layout<kv_prop_type_record_t>::size;

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

// Memory of large pages where the system has them: a design of megabytes then costs a few page
// faults, not a thousand.
std::uint8_t* allocate(std::size_t size) {
  constexpr std::size_t large_page = std::size_t{1} << 21;
  const std::size_t whole = (size / large_page + 1) * large_page;
  if (size < large_page / 2) return static_cast<std::uint8_t*>(std::malloc(size + 1));
  void* memory = std::aligned_alloc(large_page, whole);
  if (memory) ::madvise(memory, whole, MADV_HUGEPAGE);
  return static_cast<std::uint8_t*>(memory);
}

// The size of the parts that the counts announce; nothing when a count cannot be.
std::optional<std::size_t> size_of_parts(const kv_general_info_record_t& info) {
  bool sound = info.software_revision == 1.0F;
  std::size_t size = 0;
  const auto add = [&](std::int32_t count, std::int32_t limit, std::size_t record_size) {
    sound = sound && count >= 0 && count <= limit;
    if (sound) size += static_cast<std::size_t>(count) * record_size;
  };
  for (const kv_list_part_t& part : kv_list_parts) add(info.*part.count, kv_max_list, entry_size);
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    add(info.*part.count, kv_max_records, kv_layout<record>::size);
  });
  return sound ? std::optional(size) : std::nullopt;
}

// --- checks

// What a record has beyond its single indexes.
class record_check {
 public:
  explicit record_check(const kvi_design_t& design) : design_(design) {}

  bool sound(const kv_string_record_t& string) const {
    return string.len <= kv_max_string && range(string.index, string.len, kv_array::chars);
  }
  bool sound(const kv_prop_record_t& prop) const {
    return prop.prop_type >= kv_prop_string && prop.prop_type <= kv_prop_real;
  }
  bool sound(const kv_inst_record_t& inst) const {
    return range(inst.first_pin_ind, inst.nb_of_pin, kv_array::pins) &&
           properties(inst, design_.property_instance());
  }
  bool sound(const kv_pin_record_t& pin) const { return properties(pin, design_.property_pin()); }
  bool sound(const kv_net_record_t& net) const { return properties(net, design_.property_net()); }
  bool sound(const kv_net_child_record_t&) const { return true; }
  bool sound(const kv_macro_record_t& macro) const {
    return range(macro.first_pin_ind, macro.nb_of_pin, kv_array::pinms) &&
           properties(macro, design_.property_instance());
  }
  bool sound(const kv_pinm_record_t& pin) const { return properties(pin, design_.property_pin()); }

 private:
  bool range(std::int32_t first, std::int32_t n, kv_array array) const {
    return n == 0 || (n > 0 && first >= 1 && first <= design_.count(array) - n + 1);
  }
  template <typename Record>
  bool properties(const Record& record, const kv_list_t<kv_prop_type_record_t>& list) const {
    return record.nb_of_property <= list.count &&
           range(record.first_prop, record.nb_of_property, kv_array::props);
  }

  const kvi_design_t& design_;
};

// Every index of a record points at a record or is 0.
template <typename Record>
bool indexes_sound(const kvi_design_t& design, const Record& record) {
  bool sound = true;
  kv_for_each_field(record, [&](const auto& field) {
    using member = std::remove_cvref_t<decltype(record.*field.member)>;
    if constexpr (std::is_same_v<member, std::int32_t>) {
      if (!field.target) return;
      const std::int32_t index = record.*field.member;
      sound = sound && index >= 0 && index <= design.count(*field.target);
    }
  });
  return sound;
}

// No chain of links runs in a circle; link[i] is what follows record i. A record is visited once:
// `mark` tells in which walk it was met.
bool chains_end(const std::vector<std::int32_t>& link) {
  std::vector<std::size_t> mark(link.size(), 0);
  for (std::size_t start = 1; start < link.size(); ++start) {
    std::size_t i = start;
    while (i != 0 && mark[i] == 0) {
      mark[i] = start;
      i = static_cast<std::size_t>(link[i]);
    }
    if (i != 0 && mark[i] == start) return false;
  }
  return true;
}

// All records of a kind, and the chains that their `next` members make.
template <typename Record, typename... Next>
bool records_sound(const kvi_design_t& design, Next Record::*... next) {
  const record_check check(design);
  const std::int32_t count = design.count<Record>();
  std::array<std::vector<std::int32_t>, sizeof...(next)> links;
  for (auto& link : links) link.reserve(static_cast<std::size_t>(count) + 1), link.push_back(0);
  for (std::int32_t i = 1; i <= count; ++i) {
    const auto record = design.get<Record>(i);
    if (!indexes_sound(design, record) || !check.sound(record)) return false;
    std::size_t k = 0;
    (links[k++].push_back(record.*next), ...);
  }
  return std::all_of(links.begin(), links.end(), chains_end);
}

bool lists_sound(const kvi_design_t& design) {
  for (std::size_t part = 0; part < std::size(kv_list_parts); ++part) {
    for (const kv_prop_type_record_t& entry : design.list(part)) {
      for (const std::int32_t len : {entry.name.len, entry.prop_type.len}) {
        if (len < 0 || len >= gx_max_string_length) return false;
      }
    }
  }
  return true;
}

bool design_sound(const kvi_design_t& design) {
  return lists_sound(design) && records_sound<kv_string_record_t>(design) &&
         records_sound<kv_prop_record_t>(design) && records_sound<kv_inst_record_t>(design) &&
         records_sound(design, &kv_pin_record_t::next_pin_in_ind,
                       &kv_pin_record_t::next_pin_out_ind) &&
         records_sound(design, &kv_net_record_t::next_sub_net) &&
         records_sound(design, &kv_net_child_record_t::next_child) &&
         records_sound<kv_macro_record_t>(design) && records_sound<kv_pinm_record_t>(design);
}

}  // namespace

kvi_load_result kvi_design_t::load(int fd) {
  clear();
  std::uint8_t header[header_size];
  if (!read_at(fd, header, 0)) return kvi_load_result::too_short;
  kv_decode_record(header, info_);
  const auto size = size_of_parts(info_);
  if (!size || !read_parts(fd, *size)) {
    clear();
    return size ? kvi_load_result::too_short : kvi_load_result::damaged;
  }
  decode_lists();
  if (design_sound(*this)) return kvi_load_result::loaded;
  clear();
  return kvi_load_result::damaged;
}

// The size of the file is looked at before memory is taken for what the counts announce.
bool kvi_design_t::read_parts(int fd, std::size_t size) {
  struct stat file;
  if (::fstat(fd, &file) != 0 || file.st_size < static_cast<off_t>(header_size + size)) {
    return false;
  }
  bytes_.reset(allocate(size));
  return bytes_ && read_at(fd, {bytes_.get(), size}, header_size);
}

void kvi_design_t::decode_lists() {
  std::size_t at = 0;
  for (std::size_t part = 0; part < lists_.size(); ++part) {
    lists_[part].count = info_.*kv_list_parts[part].count;
    for (std::int32_t i = 0; i < lists_[part].count; ++i, at += entry_size) {
      kv_decode_record(bytes_.get() + at, lists_[part].entry[static_cast<std::size_t>(i)]);
    }
  }
  std::size_t k = 0;
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    offset_[k] = at;
    count_[k] = info_.*part.count;
    at += static_cast<std::size_t>(count_[k++]) * kv_layout<record>::size;
  });
}
