#include "expand/store.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "expand/debug.h"
#include "gx/text/messages/status.h"

constinit kv_defref_exp_rec_t kv_sext;  // costs a start nothing

namespace {

// A writer whose caller cannot go on when the store is full.
template <typename Write>
std::int32_t or_stop(Write write) {
  try {
    return write();
  } catch (const kv_store_full_t& full) {
    kv_debug_full(full);
    std::printf("!! The design is too large : more than %d records of the kind '%s'\n", full.limit,
                std::string(full.name).c_str());
    kv_error_stop();
  }
}

// The n-th record (from 1) of the chain that begins at `first`. Every index met is checked.
template <typename Record>
Record& walk(kv_blocked_t<Record>& array, std::int32_t first, std::int32_t Record::*next,
             std::int32_t n) {
  Record* record = &kv_record(array, first);
  for (std::int32_t k = 1; k < n; ++k) record = &kv_record(array, record->*next);
  return *record;
}

// The n-th pin of a net's chain; what follows it must be a pin or nothing.
kv_pin_record_t& walk_pins(std::int32_t first, std::int32_t kv_pin_record_t::*next,
                           std::int32_t n) {
  kv_pin_record_t& pin = walk(kv_sext.pins, first, next, n);
  if (pin.*next != 0) kv_record(kv_sext.pins, pin.*next);
  return pin;
}

}  // namespace

std::int32_t kv_save_string(std::string_view text) {
  return or_stop([&] { return kv_save_string(kv_sext, text); });
}
std::int32_t kv_save_prop_str(std::string_view text) {
  return or_stop([&] { return kv_save_prop_str(kv_sext, text); });
}
std::int32_t kv_save_prop_int(std::int32_t v1, std::int32_t v2, std::int32_t v3) {
  return or_stop([&] { return kv_save_prop_int(kv_sext, v1, v2, v3); });
}
std::int32_t kv_save_prop_time(std::int32_t v1, std::int32_t v2, std::int32_t v3) {
  return or_stop([&] { return kv_save_prop_time(kv_sext, v1, v2, v3); });
}
std::int32_t kv_save_prop_real(float v1, float v2, float v3) {
  return or_stop([&] { return kv_save_prop_real(kv_sext, v1, v2, v3); });
}

kv_string_record_t& kv_ptrto_string_rec(std::int32_t index) {
  return kv_record(kv_sext.strings, index);
}
kv_prop_record_t& kv_ptrto_prop_rec(std::int32_t index) { return kv_record(kv_sext.props, index); }
kv_pin_record_t& kv_ptrto_pin_rec(std::int32_t index) { return kv_record(kv_sext.pins, index); }
kv_inst_record_t& kv_ptrto_inst_rec(std::int32_t index) { return kv_record(kv_sext.insts, index); }
kv_net_record_t& kv_ptrto_net_rec(std::int32_t index) { return kv_record(kv_sext.nets, index); }
kv_net_child_record_t& kv_ptrto_net_child_rec(std::int32_t index) {
  return kv_record(kv_sext.net_childs, index);
}
kv_pinm_record_t& kv_ptrto_pinm_rec(std::int32_t index) { return kv_record(kv_sext.pinms, index); }
kv_macro_record_t& kv_ptrto_macro_rec(std::int32_t index) {
  return kv_record(kv_sext.macros, index);
}
const char* kv_ptrto_chars(std::int32_t string_index) { return kv_chars_of(kv_sext, string_index); }
std::string_view kv_string_view(std::int32_t string_index) {
  return kv_text(kv_sext, string_index);
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
  return walk(kv_sext.net_childs, kv_ptrto_net_rec(net_index).first_child,
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
