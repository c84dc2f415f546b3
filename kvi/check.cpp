#include "kvi/check.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <memory>
#include <new>

#include "gx/text/at.h"
#include "kvi/load.h"

namespace {

constexpr std::int32_t max_counter = std::numeric_limits<std::int16_t>::max();

// How many records the chain from each record holds, the record itself included. Records are taken
// from the last to the first: links that lead on, to later records, are known at once. Links that
// lead back (a pin of a range of bits may be put before others) wait for resolve().
class chain_lengths {
 public:
  explicit chain_lengths(std::int32_t count)
      : count_(count),
        length_(static_cast<std::int32_t*>(
            std::calloc(static_cast<std::size_t>(count) + 1, sizeof(std::int32_t)))) {
    if (!length_) throw std::bad_alloc();
  }

  void take(std::int32_t record, std::int32_t next) {
    if (next > record || next == 0) {
      const std::int32_t rest = at(next);
      if (rest > 0 || next == 0) at(record) = rest + 1;
    }
    all_known_ = all_known_ && at(record) > 0;
  }
  // Works out what is not known yet; next_of(record) is its link. False when a chain has no end.
  template <typename Next>
  bool resolve(Next next_of) {
    if (all_known_) return true;
    for (std::int32_t start = count_; start > 0; --start) {
      std::int32_t steps = 0, record = start;
      for (; record != 0 && at(record) == 0; record = next_of(record), ++steps) {
        at(record) = on_the_way;
      }
      if (at(record) == on_the_way) return false;
      std::int32_t length = at(record) + steps;
      for (record = start; steps > 0; --steps, record = next_of(record)) at(record) = length--;
    }
    return true;
  }
  // The chain that begins with `first` is as long as its 16-bit counter says.
  bool counted(std::int32_t first, std::int16_t counter) const {
    return counter == std::min(length(first), max_counter);
  }
  std::int32_t length(std::int32_t first) const { return gx_at(length_, first); }

 private:
  static constexpr std::int32_t on_the_way = -1;
  std::int32_t& at(std::int32_t record) { return gx_at(length_, record); }

  struct free_memory {
    void operator()(std::int32_t* memory) const { std::free(memory); }
  };
  std::int32_t count_;
  // Zeros that take no memory before they are written. [0] stays 0: nothing follows the last
  // record.
  std::unique_ptr<std::int32_t[], free_memory> length_;
  bool all_known_ = true;
};

// A piece of a part of the file at a time, for a reader that goes towards the start of the part.
class piece_t {
 public:
  // The `size` bytes at `place` of the part that begins at `part`; zeros where the file ends
  // before.
  const std::uint8_t* at(int fd, std::size_t part, std::size_t place, std::size_t size) {
    if (place < begin_ || place + size > end_) read(fd, part, place + size);
    return bytes_.get() + (place - begin_);
  }

 private:
  void read(int fd, std::size_t part, std::size_t end) {
    constexpr std::size_t most = std::size_t{1} << 18;
    const std::size_t wanted = std::min(end - part, most);
    if (wanted > room_) {
      bytes_ = std::make_unique_for_overwrite<std::uint8_t[]>(wanted);
      room_ = wanted;
    }
    end_ = end;
    begin_ = end - wanted;
    std::size_t place = begin_;
    while (place < end) {
      const auto n =
          ::pread(fd, bytes_.get() + (place - begin_), end - place, static_cast<off_t>(place));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      place += static_cast<std::size_t>(n);
    }
    std::fill(bytes_.get() + (place - begin_), bytes_.get() + wanted, std::uint8_t{0});
  }

  std::unique_ptr<std::uint8_t[]> bytes_;
  std::size_t room_ = 0, begin_ = 0, end_ = 0;
};

class soundness_check {
 public:
  soundness_check(const kvi_design_t& design, int fd) : design_(design), fd_(fd) {}

  std::optional<std::string> find_damage() {
    std::optional<std::string> damage = check_lists();
    const auto check = [&](auto... record) {
      ((damage = damage ? damage : check_part<decltype(record)>()), ...);
    };
    // strings before all that shows them, pins and net children before nets
    check(kv_string_record_t{}, kv_prop_record_t{}, kv_inst_record_t{}, kv_pin_record_t{},
          kv_net_child_record_t{}, kv_net_record_t{}, kv_macro_record_t{}, kv_pinm_record_t{});
    return damage;
  }

 private:
  std::optional<std::string> check_lists() const {
    for (std::size_t part = 0; part < std::size(kv_list_parts); ++part) {
      std::int32_t i = 0;
      for (const kv_prop_type_record_t& entry : design_.list(part)) {
        ++i;
        const bool sound = entry.name.len >= 0 && entry.name.len < gx_max_string_length &&
                           entry.prop_type.len > 0 && entry.prop_type.len < gx_max_string_length;
        if (!sound) return name_of(kv_list_parts[part].name, i);
      }
    }
    return std::nullopt;
  }

  // All records of a kind, from the last to the first.
  template <typename Record>
  std::optional<std::string> check_part() {
    for (std::int32_t i = design_.count<Record>(); i > 0; --i) {
      if (!sound(i, read<Record>(i))) return name_of(part_name<Record>(), i);
    }
    if (!chains_end<Record>()) return "a chain of part " + std::string(part_name<Record>());
    return std::nullopt;
  }

  template <typename Record>
  const std::uint8_t* bytes(std::int32_t i) {
    constexpr auto part = static_cast<std::size_t>(kv_part_of<Record>());
    return pieces_[part].at(fd_, design_.place_of<Record>(1), design_.place_of<Record>(i),
                            kv_layout<Record>::size);
  }
  template <typename Record>
  Record read(std::int32_t i) {
    Record record;
    kv_decode_record(bytes<Record>(i), record);
    return record;
  }

  static std::string name_of(std::string_view part, std::int32_t index) {
    return std::string(part) + " " + std::to_string(index);
  }
  template <typename Record>
  static std::string_view part_name() {
    return std::get<static_cast<std::size_t>(kv_part_of<Record>())>(kv_array_parts).name;
  }

  template <typename Record>
  bool chains_end() {
    const auto resolve = [&](chain_lengths& lengths, std::int32_t Record::*next) {
      return lengths.resolve([&](std::int32_t i) { return read<Record>(i).*next; });
    };
    if constexpr (std::is_same_v<Record, kv_pin_record_t>) {
      return resolve(pins_in_, &Record::next_pin_in_ind) &&
             resolve(pins_out_, &Record::next_pin_out_ind);
    } else if constexpr (std::is_same_v<Record, kv_net_record_t>) {
      return resolve(sub_nets_, &Record::next_sub_net);
    } else if constexpr (std::is_same_v<Record, kv_net_child_record_t>) {
      return resolve(children_, &Record::next_child);
    } else if constexpr (std::is_same_v<Record, kv_string_record_t>) {
      return next_string_ - 1 <= kv_max_string;
    }
    return true;
  }

  // The characters of the strings lie one after the other; a string that does not fit into its
  // block of characters leaves the rest of the block, no more than it would need. An empty one
  // is at the last character before it.
  bool sound(std::int32_t, const kv_string_record_t& string) {
    if (string.len < 0 || string.len > kv_max_string || string.index < 0) return false;
    const std::int64_t start = std::int64_t{string.index} + (string.len == 0 ? 1 : 0);
    const std::int64_t gap = next_string_ - (start + string.len);
    const bool is_last = next_string_ > design_.count<char>();
    if (start < 1 || gap < 0 || gap > (is_last ? 0 : kv_max_string)) return false;
    next_string_ = start;
    return string.len == 0 || *bytes<char>(string.index) != 0;
  }
  bool sound(std::int32_t, const kv_prop_record_t& prop) const {
    return prop.prop_type >= kv_prop_string && prop.prop_type <= kv_prop_real &&
           indexes_sound(prop) && (prop.prop_type != kv_prop_string || prop.valuec > 0);
  }
  bool sound(std::int32_t i, const kv_inst_record_t& inst) const {
    return in_place(i, inst) && range(inst.first_pin_ind, inst.nb_of_pin, kv_array::pins) &&
           properties(inst, design_.kept().property_instance);
  }
  bool sound(std::int32_t i, const kv_pin_record_t& pin) {
    if (!in_place(i, pin)) return false;
    pins_in_.take(i, pin.next_pin_in_ind);
    pins_out_.take(i, pin.next_pin_out_ind);
    return with_owner<kv_inst_record_t>(i, pin.instance_ind) &&
           properties(pin, design_.kept().property_pin);
  }
  bool sound(std::int32_t i, const kv_net_child_record_t& child) {
    if (!in_place(i, child)) return false;
    children_.take(i, child.next_child);
    return true;
  }
  bool sound(std::int32_t i, const kv_net_record_t& net) {
    if (!in_place(i, net)) return false;
    sub_nets_.take(i, net.next_sub_net);
    if (net.net_type == kv_net_bus && net.netind_start != 0) {
      const int width = std::abs(net.net_bus_end - net.net_bus_start) + 1;
      if (!range(net.netind_start, width, kv_array::nets)) return false;
    }
    return properties(net, design_.kept().property_net) &&
           pins_in_.counted(net.first_pin_in_ind, net.nb_pin_in) &&
           pins_out_.counted(net.first_pin_out_ind, net.nb_pin_out) &&
           children_.length(net.first_child) == net.nb_of_child;
  }
  bool sound(std::int32_t i, const kv_macro_record_t& macro) const {
    return in_place(i, macro) && range(macro.first_pin_ind, macro.nb_of_pin, kv_array::pinms) &&
           properties(macro, design_.kept().property_instance);
  }
  bool sound(std::int32_t i, const kv_pinm_record_t& pin) {
    return in_place(i, pin) && with_owner<kv_macro_record_t>(i, pin.macro_ind) &&
           properties(pin, design_.kept().property_pin);
  }

  template <typename Record>
  bool in_place(std::int32_t i, const Record& record) const {
    return record.self == i && indexes_sound(record);
  }
  // Every index of the record points at a record or is 0.
  template <typename Record>
  bool indexes_sound(const Record& record) const {
    bool sound = true;
    kv_for_each_field(record, [&](const auto& field) {
      using member = std::remove_cvref_t<decltype(record.*field.member)>;
      if constexpr (std::is_same_v<member, std::int32_t>) {
        if (!field.target) return;
        const std::int32_t index = record.*field.member;
        sound = sound && index >= 0 && index <= design_.count(*field.target);
      }
    });
    return sound;
  }
  bool range(std::int32_t first, std::int32_t n, kv_array array) const {
    return n == 0 || (n > 0 && first >= 1 && first <= design_.count(array) - n + 1);
  }
  template <typename Record>
  bool properties(const Record& record, const kv_prop_list_t& list) const {
    return record.nb_of_property <= list.count &&
           range(record.first_prop, record.nb_of_property, kv_array::props);
  }
  // Pin `i` is one of those that its owner has.
  template <typename Owner>
  bool with_owner(std::int32_t i, std::int32_t owner_ind) {
    if (owner_ind == 0) return false;
    const auto owner = read<Owner>(owner_ind);
    return i >= owner.first_pin_ind && i - owner.first_pin_ind < owner.nb_of_pin;
  }
  const kvi_design_t& design_;
  int fd_;
  std::array<piece_t, std::tuple_size_v<decltype(kv_array_parts)>> pieces_;
  std::int64_t next_string_ =
      std::int64_t{design_.count<char>()} + 1;  // first place after a string
  chain_lengths pins_in_{design_.count<kv_pin_record_t>()};
  chain_lengths pins_out_{design_.count<kv_pin_record_t>()};
  chain_lengths sub_nets_{design_.count<kv_net_record_t>()};
  chain_lengths children_{design_.count<kv_net_child_record_t>()};
};

}  // namespace

std::optional<std::string> kvi_find_damage(const kvi_design_t& design, int fd) {
  return soundness_check(design, fd).find_damage();
}
