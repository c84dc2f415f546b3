// The design file: one description of its parts and of the records in them.
//
// A record is a list of fields (offset, name, member of the store's record); the width follows
// from the member's type, and an index field also names the array it points into. Writer, reader
// and dump all walk these lists. Numbers are little-endian; every byte that no field covers
// (padding and the places of in-memory references) is 0.
#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "netlist/records.h"

// A field of `Record`. `target` is set for an index: the array in which 1..count is valid.
template <typename Record, typename Member>
struct kv_field_t {
  std::size_t offset;
  std::string_view name;
  Member Record::*member;
  std::optional<kv_array> target;
};

template <typename Record, typename Member>
constexpr kv_field_t<Record, Member> kv_field(std::size_t offset, std::string_view name,
                                              Member Record::*member) {
  return {offset, name, member, std::nullopt};
}
template <typename Record>
constexpr kv_field_t<Record, std::int32_t> kv_index(std::size_t offset, std::string_view name,
                                                    std::int32_t Record::*member, kv_array target) {
  return {offset, name, member, target};
}

// Fields that are in the record only when `Holds` says so; `when` says it in words.
template <auto Holds, typename Fields>
struct kv_variant_t {
  std::string_view when;
  Fields fields;
  static constexpr bool holds(const auto& record) { return Holds(record); }
};
template <auto Holds, typename... Field>
constexpr auto kv_variant(std::string_view when, Field... fields) {
  return kv_variant_t<Holds, std::tuple<Field...>>{when, std::tuple{fields...}};
}

// The layout of `Record`: its size in bytes, its fields, and the variants after them.
template <typename Record>
struct kv_layout;

template <typename Record>
concept kv_laid_out = requires {
  kv_layout<Record>::fields;
};

template <>
struct kv_layout<kv_signal_state_rec> {
  using record = kv_signal_state_rec;
  static constexpr std::size_t size = 12;
  static constexpr std::tuple fields{kv_field(0, "state", &record::state),
                                     kv_field(4, "time", &record::time),
                                     kv_field(8, "fixed", &record::fixed)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<kv_general_info_record_t> {
  using record = kv_general_info_record_t;
  static constexpr std::size_t size = 68;
  static constexpr std::tuple fields{
      kv_field(0, "day", &record::day),
      kv_field(2, "month", &record::month),
      kv_field(4, "year", &record::year),
      kv_field(8, "software_revision", &record::software_revision),
      kv_field(12, "nbof_prop_instance", &record::nbof_prop_instance),
      kv_field(16, "nbof_prop_pin", &record::nbof_prop_pin),
      kv_field(20, "nbof_prop_net", &record::nbof_prop_net),
      kv_field(24, "nbof_char", &record::nbof_char),
      kv_field(28, "nbof_string", &record::nbof_string),
      kv_field(32, "nbof_prop", &record::nbof_prop),
      kv_field(36, "nbof_instance", &record::nbof_instance),
      kv_field(40, "nbof_pin", &record::nbof_pin),
      kv_field(44, "nbof_net", &record::nbof_net),
      kv_field(48, "nbof_net_child", &record::nbof_net_child),
      kv_field(52, "nbof_pinm", &record::nbof_pinm),
      kv_field(56, "nbof_macro", &record::nbof_macro),
      kv_field(60, "time_step", &record::time_step),
      kv_field(64, "num_errors", &record::num_errors),
      kv_field(66, "num_warnings", &record::num_warnings)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<kv_prop_type_record_t> {
  using record = kv_prop_type_record_t;
  static constexpr std::size_t size = 416;
  static constexpr std::tuple fields{kv_field(0, "name", &record::name),
                                     kv_field(208, "prop_type", &record::prop_type)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<char> {  // a plain byte
  static constexpr std::size_t size = 1;
};

template <>
struct kv_layout<kv_string_record_t> {
  using record = kv_string_record_t;
  static constexpr std::size_t size = 12;
  static constexpr std::tuple fields{kv_index(0, "index", &record::index, kv_array::chars),
                                     kv_field(8, "len", &record::len)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<kv_prop_record_t> {
  using record = kv_prop_record_t;
  static constexpr std::size_t size = 16;
  template <kv_prop_type Type>
  static constexpr bool is(const record& prop) {
    return prop.prop_type == Type;
  }
  static constexpr std::tuple fields{kv_field(0, "prop_type", &record::prop_type)};
  static constexpr std::tuple variants{
      kv_variant<is<kv_prop_string>>("prop_type 0",
                                     kv_index(4, "valuec", &record::valuec, kv_array::strings)),
      kv_variant<is<kv_prop_int>>("prop_type 1", kv_field(4, "valuei", &record::valuei)),
      kv_variant<is<kv_prop_time>>("prop_type 2", kv_field(4, "valuet", &record::valuet)),
      kv_variant<is<kv_prop_real>>("prop_type 3", kv_field(4, "valuer", &record::valuer))};
};

template <>
struct kv_layout<kv_inst_record_t> {
  using record = kv_inst_record_t;
  static constexpr std::size_t size = 44;
  static constexpr std::tuple fields{
      kv_index(0, "self", &record::self, kv_array::insts),
      kv_field(4, "object_id", &record::object_id),
      kv_field(6, "status", &record::status),
      kv_field(8, "timing_index", &record::timing_index),
      kv_field(12, "user_data_area", &record::user_data_area),
      kv_index(16, "sim_path", &record::sim_path, kv_array::strings),
      kv_index(20, "file_path", &record::file_path, kv_array::strings),
      kv_field(24, "nb_of_pin", &record::nb_of_pin),
      kv_index(28, "first_pin_ind", &record::first_pin_ind, kv_array::pins),
      kv_field(36, "nb_of_property", &record::nb_of_property),
      kv_index(40, "first_prop", &record::first_prop, kv_array::props)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<kv_pin_record_t> {
  using record = kv_pin_record_t;
  static constexpr std::size_t size = 120;
  static constexpr std::tuple fields{
      kv_index(0, "self", &record::self, kv_array::pins),
      kv_field(4, "object_id", &record::object_id),
      kv_field(6, "status", &record::status),
      kv_field(8, "io_type", &record::io_type),
      kv_field(12, "pin_hdler", &record::pin_hdler),
      kv_field(16, "pin_hdl_priority", &record::pin_hdl_priority),
      kv_field(20, "pin_state", &record::pin_state),
      kv_field(36, "rise", &record::rise),
      kv_field(48, "fall", &record::fall),
      kv_field(60, "drive_array", &record::drive_array),
      kv_index(68, "sim_path", &record::sim_path, kv_array::strings),
      kv_index(72, "instance_ind", &record::instance_ind, kv_array::insts),
      kv_index(84, "net_ind", &record::net_ind, kv_array::nets),
      kv_index(92, "next_pin_in_ind", &record::next_pin_in_ind, kv_array::pins),
      kv_index(100, "next_pin_out_ind", &record::next_pin_out_ind, kv_array::pins),
      kv_field(108, "pin_start", &record::pin_start),
      kv_field(110, "pin_end", &record::pin_end),
      kv_field(112, "pin_net_start", &record::pin_net_start),
      kv_field(114, "nb_of_property", &record::nb_of_property),
      kv_index(116, "first_prop", &record::first_prop, kv_array::props)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<kv_net_record_t> {
  using record = kv_net_record_t;
  static constexpr std::size_t size = 160;
  static constexpr bool is_bus(const record& net) { return net.net_type == kv_net_bus; }
  static constexpr bool is_no_bus(const record& net) { return !is_bus(net); }
  static constexpr std::tuple fields{
      kv_index(0, "self", &record::self, kv_array::nets),
      kv_field(4, "object_id", &record::object_id),
      kv_field(6, "net_type", &record::net_type),
      kv_field(8, "status", &record::status),
      kv_field(10, "net_kind", &record::net_kind),
      kv_index(12, "name", &record::name, kv_array::strings),
      kv_index(16, "sim_path", &record::sim_path, kv_array::strings),
      kv_field(20, "nb_of_child", &record::nb_of_child),
      kv_index(24, "first_child", &record::first_child, kv_array::net_childs),
      kv_field(32, "nb_of_property", &record::nb_of_property),
      kv_index(36, "first_prop", &record::first_prop, kv_array::props),
      kv_field(40, "nb_pin_in", &record::nb_pin_in),
      kv_index(44, "first_pin_in_ind", &record::first_pin_in_ind, kv_array::pins),
      kv_field(52, "nb_pin_out", &record::nb_pin_out),
      kv_index(56, "first_pin_out_ind", &record::first_pin_out_ind, kv_array::pins),
      kv_index(124, "bus", &record::bus, kv_array::nets),
      kv_field(132, "posinbus", &record::posinbus),
      kv_index(136, "first_sub_net", &record::first_sub_net, kv_array::nets),
      kv_index(144, "father_net", &record::father_net, kv_array::nets),
      kv_index(152, "next_sub_net", &record::next_sub_net, kv_array::nets)};
  static constexpr std::tuple variants{
      kv_variant<is_no_bus>("net_type 1, 2", kv_field(64, "state_init", &record::state_init),
                            kv_field(68, "cur_state", &record::cur_state),
                            kv_field(80, "old_state", &record::old_state),
                            kv_field(92, "rise", &record::rise),
                            kv_field(104, "fall", &record::fall)),
      kv_variant<is_bus>("net_type 3", kv_field(64, "net_bus_start", &record::net_bus_start),
                         kv_field(66, "net_bus_end", &record::net_bus_end),
                         kv_index(68, "netind_start", &record::netind_start, kv_array::nets))};
};

template <>
struct kv_layout<kv_net_child_record_t> {
  using record = kv_net_child_record_t;
  static constexpr std::size_t size = 28;
  static constexpr std::tuple fields{
      kv_index(0, "self", &record::self, kv_array::net_childs),
      kv_index(4, "sim_path", &record::sim_path, kv_array::strings),
      kv_field(8, "object_id", &record::object_id),
      kv_index(12, "name", &record::name, kv_array::strings),
      kv_field(16, "net_kind", &record::net_kind),
      kv_index(20, "next_child", &record::next_child, kv_array::net_childs)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<kv_macro_record_t> {
  using record = kv_macro_record_t;
  static constexpr std::size_t size = 40;
  static constexpr std::tuple fields{
      kv_index(0, "self", &record::self, kv_array::macros),
      kv_field(4, "object_id", &record::object_id),
      kv_field(6, "status", &record::status),
      kv_field(8, "timing_index", &record::timing_index),
      kv_index(12, "sim_path", &record::sim_path, kv_array::strings),
      kv_index(16, "file_path", &record::file_path, kv_array::strings),
      kv_field(20, "nb_of_pin", &record::nb_of_pin),
      kv_index(24, "first_pin_ind", &record::first_pin_ind, kv_array::pinms),
      kv_field(32, "nb_of_property", &record::nb_of_property),
      kv_index(36, "first_prop", &record::first_prop, kv_array::props)};
  static constexpr std::tuple variants{};
};

template <>
struct kv_layout<kv_pinm_record_t> {
  using record = kv_pinm_record_t;
  static constexpr std::size_t size = 40;
  static constexpr std::tuple fields{
      kv_index(0, "self", &record::self, kv_array::pinms),
      kv_field(4, "object_id", &record::object_id),
      kv_field(6, "status", &record::status),
      kv_index(8, "sim_path", &record::sim_path, kv_array::strings),
      kv_index(12, "macro_ind", &record::macro_ind, kv_array::macros),
      kv_index(20, "net_ind", &record::net_ind, kv_array::nets),
      kv_field(28, "pin_start", &record::pin_start),
      kv_field(30, "pin_end", &record::pin_end),
      kv_field(32, "pin_net_start", &record::pin_net_start),
      kv_field(34, "nb_of_property", &record::nb_of_property),
      kv_index(36, "first_prop", &record::first_prop, kv_array::props)};
  static constexpr std::tuple variants{};
};

// --- the parts of the file, after the general information record

// A property list: where it is in the store and which counter holds its length.
struct kv_list_part_t {
  std::string_view name;
  kv_prop_list_t kv_kept_lists_t::*list;
  std::int32_t kv_general_info_record_t::*count;
};
inline constexpr kv_list_part_t kv_list_parts[] = {
    {"property_instance", &kv_kept_lists_t::property_instance,
     &kv_general_info_record_t::nbof_prop_instance},
    {"property_pin", &kv_kept_lists_t::property_pin, &kv_general_info_record_t::nbof_prop_pin},
    {"property_net", &kv_kept_lists_t::property_net, &kv_general_info_record_t::nbof_prop_net}};

// An array of the store, likewise. Parts are in the order of kv_array.
template <typename Record>
struct kv_array_part_t {
  using record = Record;
  std::string_view name;
  kv_blocked_t<Record> kv_design_t::*array;
  std::int32_t kv_general_info_record_t::*count;
};
inline constexpr std::tuple kv_array_parts{
    kv_array_part_t<char>{"char", &kv_design_t::chars, &kv_general_info_record_t::nbof_char},
    kv_array_part_t<kv_string_record_t>{"string", &kv_design_t::strings,
                                        &kv_general_info_record_t::nbof_string},
    kv_array_part_t<kv_prop_record_t>{"prop", &kv_design_t::props,
                                      &kv_general_info_record_t::nbof_prop},
    kv_array_part_t<kv_inst_record_t>{"instance", &kv_design_t::insts,
                                      &kv_general_info_record_t::nbof_instance},
    kv_array_part_t<kv_pin_record_t>{"pin", &kv_design_t::pins,
                                     &kv_general_info_record_t::nbof_pin},
    kv_array_part_t<kv_net_record_t>{"net", &kv_design_t::nets,
                                     &kv_general_info_record_t::nbof_net},
    kv_array_part_t<kv_net_child_record_t>{"net_child", &kv_design_t::net_childs,
                                           &kv_general_info_record_t::nbof_net_child},
    kv_array_part_t<kv_macro_record_t>{"macro", &kv_design_t::macros,
                                       &kv_general_info_record_t::nbof_macro},
    kv_array_part_t<kv_pinm_record_t>{"pinm", &kv_design_t::pinms,
                                      &kv_general_info_record_t::nbof_pinm}};

// Calls visit(part) for every array part in file order.
template <typename Visit>
constexpr void kv_for_each_part(Visit visit) {
  std::apply([&](const auto&... part) { (visit(part), ...); }, kv_array_parts);
}

// The part that holds the records of a kind.
template <typename Record>
constexpr kv_array kv_part_of() {
  int at = 0, found = 0;
  kv_for_each_part([&](const auto& part) {
    if (std::is_same_v<typename std::remove_cvref_t<decltype(part)>::record, Record>) found = at;
    ++at;
  });
  return static_cast<kv_array>(found);
}

// Calls visit(name, member) for each of the counts of a summary, in the order of its record.
template <typename Visit>
constexpr void kv_for_each_count(Visit visit) {
  const auto one = [&](const auto& field) {
    if (field.name.starts_with("nbof_")) {
      if constexpr (std::is_same_v<decltype(field.member),
                                   std::int32_t kv_general_info_record_t::*>)
        visit(field.name, field.member);
    }
  };
  std::apply([&](const auto&... field) { (one(field), ...); },
             kv_layout<kv_general_info_record_t>::fields);
}
constexpr std::string_view kv_count_name(std::int32_t kv_general_info_record_t::*count) {
  std::string_view found;
  kv_for_each_count([&](std::string_view name, auto member) {
    if (member == count) found = name;
  });
  return found;
}

// Calls visit(field) for every field that `record` has.
template <typename Record, typename Visit>
constexpr void kv_for_each_field(const Record& record, Visit visit) {
  const auto all = [&](const auto&... field) { (visit(field), ...); };
  std::apply(all, kv_layout<Record>::fields);
  std::apply(
      [&](const auto&... variant) {
        ((variant.holds(record) ? std::apply(all, variant.fields) : void()), ...);
      },
      kv_layout<Record>::variants);
}

// The record and the type of a member, and where the member begins in the file's record. Members of
// variants are found, too: whether the record has them is the caller's to know.
template <auto Member>
struct kv_member_t;
template <typename Record, typename Value, Value Record::*Member>
struct kv_member_t<Member> {
  using record = Record;
  using value = Value;
};
template <auto Member>
constexpr std::size_t kv_offset_of() {
  constexpr std::size_t none = ~std::size_t{0};
  std::size_t found = none;
  const auto one = [&](const auto& field) {
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(field.member)>,
                                 std::remove_const_t<decltype(Member)>>)
      if (field.member == Member) found = field.offset;
  };
  const auto all = [&](const auto&... field) { (one(field), ...); };
  using layout = kv_layout<typename kv_member_t<Member>::record>;
  std::apply(all, layout::fields);
  std::apply([&](const auto&... variant) { (std::apply(all, variant.fields), ...); },
             layout::variants);
  return found;
}

// --- bytes of one value

template <typename Number>
requires std::is_arithmetic_v<Number>
void kv_encode_value(Number number, std::uint8_t* out) {
  if constexpr (std::endian::native == std::endian::big) {
    std::uint8_t bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    std::reverse_copy(bytes, bytes + sizeof number, out);
  } else {
    std::memcpy(out, &number, sizeof number);
  }
}
template <typename Number>
requires std::is_arithmetic_v<Number>
void kv_decode_value(const std::uint8_t* in, Number& number) {
  if constexpr (std::endian::native == std::endian::big) {
    std::uint8_t bytes[sizeof number];
    std::reverse_copy(in, in + sizeof number, bytes);
    std::memcpy(&number, bytes, sizeof number);
  } else {
    std::memcpy(&number, in, sizeof number);
  }
}

// A text record: its length, then its characters; unused places are 0.
inline void kv_encode_value(const gx_string_record_t& string, std::uint8_t* out) {
  const std::string_view text = gx_view(string);
  kv_encode_value(string.len, out);
  std::copy(text.begin(), text.end(), out + 4);
}
inline void kv_decode_value(const std::uint8_t* in, gx_string_record_t& string) {
  kv_decode_value(in, string.len);
  std::memcpy(string.char_, in + 4, sizeof string.char_);
}

template <typename Number, std::size_t Count>
void kv_encode_value(const Number (&numbers)[Count], std::uint8_t* out) {
  for (const Number number : numbers) {
    kv_encode_value(number, out);
    out += sizeof number;
  }
}
template <typename Number, std::size_t Count>
void kv_decode_value(const std::uint8_t* in, Number (&numbers)[Count]) {
  for (Number& number : numbers) {
    kv_decode_value(in, number);
    in += sizeof number;
  }
}

// --- bytes of one record

// Writes kv_layout<Record>::size bytes.
template <kv_laid_out Record>
void kv_encode_record(const Record& record, std::uint8_t* out) {
  std::memset(out, 0, kv_layout<Record>::size);
  kv_for_each_field(record, [&](const auto& field) {
    const auto& value = record.*field.member;
    if constexpr (kv_laid_out<std::remove_cvref_t<decltype(value)>>) {
      kv_encode_record(value, out + field.offset);
    } else {
      kv_encode_value(value, out + field.offset);
    }
  });
}

// Reads kv_layout<Record>::size bytes. The values are taken as they are; the fields common to all
// forms come first, so that they decide which variant is read.
template <kv_laid_out Record>
void kv_decode_record(const std::uint8_t* in, Record& record) {
  const auto decode = [&](const auto&... field) {
    const auto one = [&](const auto& f) {
      auto& value = record.*f.member;
      if constexpr (kv_laid_out<std::remove_cvref_t<decltype(value)>>) {
        kv_decode_record(in + f.offset, value);
      } else {
        kv_decode_value(in + f.offset, value);
      }
    };
    (one(field), ...);
  };
  std::apply(decode, kv_layout<Record>::fields);
  std::apply(
      [&](const auto&... variant) {
        ((variant.holds(record) ? std::apply(decode, variant.fields) : void()), ...);
      },
      kv_layout<Record>::variants);
}
