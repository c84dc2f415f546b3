// Checked access to the records of the store by index, and the walkers of its chains.
#include <algorithm>

#include "expand/debug.h"
#include "expand/store.h"
#include "gx/text/status.h"

namespace {

// The names of an array in the lines that report a bad index.
struct kv_array_name_t {
  const char* operation;  // of KV_PTRTO_..._REC
  const char* counter;
};

[[noreturn]] void bad_index(const kv_array_name_t& name, std::int32_t index, std::int32_t count) {
  kv_debug(" KV_PTRTO_%s_REC  : error : index  : %d   max_%s_cur : %d\n", name.operation, index,
           name.counter, count);
  kv_error_stop();
}

template <typename Record>
Record& checked(kv_blocked_t<Record>& array, std::int32_t index, const kv_array_name_t& name) {
  if (!array.holds(index)) bad_index(name, index, array.count);
  return array[index];
}

constexpr kv_array_name_t string_name{"STRING", "string"};
constexpr kv_array_name_t prop_name{"PROP", "prop"};
constexpr kv_array_name_t pin_name{"PIN", "pin"};
constexpr kv_array_name_t inst_name{"INST", "inst"};
constexpr kv_array_name_t net_name{"NET", "net"};
constexpr kv_array_name_t net_child_name{"NET_CHILD", "net_child"};
constexpr kv_array_name_t pinm_name{"PINM", "pinm"};
constexpr kv_array_name_t macro_name{"MACRO", "macro"};

// The n-th record (from 1) of the chain that begins at `first`. Every index met is checked.
template <typename Record>
Record& walk(kv_blocked_t<Record>& array, const kv_array_name_t& name, std::int32_t first,
             std::int32_t Record::*next, std::int32_t n) {
  Record* record = &checked(array, first, name);
  for (std::int32_t k = 1; k < n; ++k) record = &checked(array, record->*next, name);
  return *record;
}

// The n-th pin of a net's chain; what follows it must be a pin or nothing.
kv_pin_record_t& walk_pins(std::int32_t first, std::int32_t kv_pin_record_t::*next,
                           std::int32_t n) {
  kv_pin_record_t& pin = walk(kv_sext.pins, pin_name, first, next, n);
  if (pin.*next != 0) checked(kv_sext.pins, pin.*next, pin_name);
  return pin;
}

}  // namespace

kv_string_record_t& kv_ptrto_string_rec(std::int32_t index) {
  return checked(kv_sext.strings, index, string_name);
}
kv_prop_record_t& kv_ptrto_prop_rec(std::int32_t index) {
  return checked(kv_sext.props, index, prop_name);
}
kv_pin_record_t& kv_ptrto_pin_rec(std::int32_t index) {
  return checked(kv_sext.pins, index, pin_name);
}
kv_inst_record_t& kv_ptrto_inst_rec(std::int32_t index) {
  return checked(kv_sext.insts, index, inst_name);
}
kv_net_record_t& kv_ptrto_net_rec(std::int32_t index) {
  return checked(kv_sext.nets, index, net_name);
}
kv_net_child_record_t& kv_ptrto_net_child_rec(std::int32_t index) {
  return checked(kv_sext.net_childs, index, net_child_name);
}
kv_pinm_record_t& kv_ptrto_pinm_rec(std::int32_t index) {
  return checked(kv_sext.pinms, index, pinm_name);
}
kv_macro_record_t& kv_ptrto_macro_rec(std::int32_t index) {
  return checked(kv_sext.macros, index, macro_name);
}

const char* kv_ptrto_chars(std::int32_t string_index) {
  const kv_string_record_t& record = kv_ptrto_string_rec(string_index);
  if (record.len == 0) return "";
  if (!kv_sext.chars.holds(record.index)) {
    kv_debug(" KV_PTRTO_CHARS  : error : index  : %d   max_char_cur : %d\n", record.index,
             kv_sext.chars.count);
    kv_error_stop();
  }
  return &kv_sext.chars[record.index];
}

std::string_view kv_string_view(std::int32_t string_index) {
  if (string_index == 0) return {};
  return {kv_ptrto_chars(string_index),
          static_cast<std::size_t>(kv_ptrto_string_rec(string_index).len)};
}

gx_string_record_t kv_copy_string_kv_gx(std::int32_t string_index) {
  if (!kv_sext.strings.holds(string_index)) {
    kv_debug(" !!! ERROR in KV_COPY_STRING_KV_GX : str_index : invalid : %d   0,%d\n", string_index,
             kv_sext.strings.count);
    gx_set_status(gx_code::invalid_string);
  }
  const kv_string_record_t& record = kv_sext.strings[string_index];
  if (record.len < 0 || (record.len > 0 && !kv_sext.chars.holds(record.index))) {
    kv_debug(" !!! ERROR in KV_COPY_STRING_KV_GX : REC_IN : invalid  : %d  %d\n", record.len,
             record.index);
    gx_set_status(gx_code::invalid_string);
  }
  gx_string_record_t string;
  string.len = record.len;
  if (record.len > 0) std::copy_n(&kv_sext.chars[record.index], record.len, string.char_);
  return string;
}

kv_net_child_record_t& kv_net_ptrto_net_child_rec(std::int32_t net_index, std::int32_t n) {
  return walk(kv_sext.net_childs, net_child_name, kv_ptrto_net_rec(net_index).first_child,
              &kv_net_child_record_t::next_child, n);
}
kv_pin_record_t& kv_net_ptrto_pin_in_rec(std::int32_t net_index, std::int32_t n) {
  return walk_pins(kv_ptrto_net_rec(net_index).first_pin_in_ind, &kv_pin_record_t::next_pin_in_ind,
                   n);
}
kv_pin_record_t& kv_net_ptrto_pin_out_rec(std::int32_t net_index, std::int32_t n) {
  return walk_pins(kv_ptrto_net_rec(net_index).first_pin_out_ind,
                   &kv_pin_record_t::next_pin_out_ind, n);
}
